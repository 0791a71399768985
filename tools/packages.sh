# SPDX-License-Identifier: Apache-2.0
# The Debian packages behind each command, and the one way to have them. Sourced, not run.
#
#   ensure_packages "${packages_run[@]}"      installs what is missing, and nothing when nothing is

# The library and the example application.
packages_run=(
  g++ cmake ninja-build pkg-config tzdata
  libicu-dev libcctz-dev libssl-dev libsimdjson-dev libexpat1-dev
)

# The tests: the other compiler with its sanitizers, the test framework, the oracles, the event loops tried, the
# debugger.
packages_test=(
  "${packages_run[@]}"
  clang libclang-rt-14-dev libfmt-dev libgtest-dev libgmock-dev liburiparser-dev libglib2.0-dev python3 gdb procps
)

# The benchmarks: the framework and every peer.
packages_bench=(
  "${packages_run[@]}"
  python3 libbenchmark-dev libabsl-dev libfmt-dev qt6-base-dev libboost1.81-dev libboost-url1.81-dev libuv1-dev
  libasio-dev libhowardhinnant-date-dev nlohmann-json3-dev libplist-dev libcurl4-openssl-dev libglib2.0-dev
  libsigc++-3.0-dev
)

# tools/coverage.
packages_coverage=("${packages_test[@]}" llvm-14)

# tools/package_test.
packages_package=("${packages_run[@]}" dpkg-dev doxygen lintian debootstrap)

# tools/check.
packages_check=("${packages_test[@]}" clang-format-14 clang-tidy-14 git)

# Prints those of the packages named that are not installed, one a line.
missing_packages() {
  local package
  for package in "$@"; do
    [[ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" == installed ]] || printf '%s\n' "$package"
  done
}

# Installs what is missing of the packages named. Ends the program with status 2 when that cannot be done.
ensure_packages() {
  local missing as_root=()
  if ! command -v dpkg-query >/dev/null; then
    printf 'This is no Debian: these packages, or what stands for them here, are taken to be installed: %s\n' "$*" >&2
    return
  fi
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]})) || return 0

  if ((EUID != 0)); then
    if command -v sudo >/dev/null && { [[ -t 0 ]] || sudo -n true 2>/dev/null; }; then
      as_root=(sudo)
    else
      printf 'Missing Debian packages, and neither root nor sudo to install them: %s\n' "${missing[*]}" >&2
      exit 2
    fi
  fi
  printf '== Installing %s\n' "${missing[*]}"
  if ! "${as_root[@]}" apt-get update -q </dev/null ||
     ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
         apt-get install -y -q --no-install-recommends "${missing[@]}" </dev/null; then
    printf 'These Debian packages could not be installed: %s\n' "${missing[*]}" >&2
    exit 2
  fi
}
