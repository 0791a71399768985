# SPDX-License-Identifier: Apache-2.0
# Installs ${build} and moves what was installed to ${tree}: whatever remembers where it was installed breaks.
file(REMOVE_RECURSE ${tree} ${tree}.first)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${build} --prefix ${tree}.first
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${tree}.first ${tree})
