# SPDX-License-Identifier: Apache-2.0
# Run by cpack before it makes the packages.
if(CPACK_PACKAGE_CONTACT MATCHES "@localhost>$")
  message(WARNING
    "The packages will name \"${CPACK_PACKAGE_CONTACT}\" as their maintainer, which is nobody's address. "
    "Expected whoever builds them: set DEBFULLNAME and DEBEMAIL, or -D HAVRIN_MAINTAINER='Name <address>', configure "
    "again (cmake --preset package), then run cpack again.")
endif()
