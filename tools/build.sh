# SPDX-License-Identifier: Apache-2.0
# Configuring, building and testing a preset, for the commands. Sourced, not run; the working folder is the root.
#
#   configure_preset dev                     does nothing when it has been done and no list has changed
#   build_preset dev radio                   the whole tree when no target is named
#   test_preset dev -R text                  ctest with a summary under it

jobs=$(nproc)

# A compiler cache is used where there is one and nothing else was asked for.
if [[ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ]] && command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

export NINJA_STATUS='[%f/%t %es] '

configure_preset() {
  local preset=$1
  # Once configured, the build itself configures again when a list has changed.
  if [[ ! -f build/$preset/build.ninja || CMakePresets.json -nt build/$preset/build.ninja ]]; then
    printf '== Configuring %s\n' "$preset"
    cmake --preset "$preset"
  fi
}

build_preset() {
  local preset=$1
  shift
  printf '== Building %s\n' "$preset"
  ninja -C "build/$preset" -j "$jobs" "$@"
}

# Runs the tests of a preset. Leaves ctest's own lines as they are; adds how many cases stood in the programs that ran.
test_preset() {
  local preset=$1 status=0
  shift
  printf '== Testing %s\n' "$preset"
  ctest --preset "$preset" -j "$jobs" "$@" || status=$?
  summarise_tests "build/$preset/Testing/Temporary/LastTest.log"
  return "$status"
}

# Reads the log of the last run: the cases each program counted, and the slowest programs.
summarise_tests() {
  [[ -f $1 ]] || return 0
  awk '
    /^[0-9]+\/[0-9]+ Test: /    { name = $3; programs++ }
    /^\[  PASSED  \] [0-9]+ test/ { passed += $4 }
    /^\[  FAILED  \] [0-9]+ test/ { failed += $4 }
    /^Test time = /             { split($0, part, "="); seconds[name] = part[2] + 0 }
    END {
      if (!programs) exit
      printf "== %d programs, %d cases passed", programs, passed
      if (failed) printf ", %d FAILED", failed
      for (n = 0; n < 3; n++) {
        slowest = ""
        for (name in seconds) if (slowest == "" || seconds[name] > seconds[slowest]) slowest = name
        if (slowest == "" || seconds[slowest] < 1) break
        printf "%s %s %.1f s", n ? "," : "; slowest:", slowest, seconds[slowest]
        delete seconds[slowest]
      }
      printf "\n"
    }' "$1"
}
