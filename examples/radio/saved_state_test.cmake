# SPDX-License-Identifier: Apache-2.0
# Runs the board again and again over one state file:
#   cmake -DRADIO=the program -DFOLDER=a folder of the test's own -P saved_state_test.cmake
file(REMOVE_RECURSE ${FOLDER})
set(state ${FOLDER}/new/folder/board.state)

# run(<what is asked> <status> <what is printed> <the command line>...)
function(run why wanted_status wanted)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE printed ERROR_VARIABLE printed)
  if(NOT status STREQUAL wanted_status OR NOT printed MATCHES "${wanted}")
    message(SEND_ERROR "${why}: status ${status}, wanted \"${wanted}\" in\n${printed}")
  endif()
endfunction()
set(board ${RADIO} --once --colours always)

run("it marks" 0 "search: jazz .*★ WX .*Lantern Radio is a favourite now" ${board} --state ${state} --keys "/jazz\n+")
run("it restores marks and search" 0 "search: jazz .*★ WX .*Last open (today|yesterday)" ${board} --state ${state})
run("it gives a genre another colour" 0 "jazz is #B03A2E now" ${board} --state ${state} --keys "#")
run("it restores colours" 0 "48;2;176;58;46;38;5;231m jazz" ${board} --state ${state})
string(ASCII 27 escape)
run("it restores an empty search" 0 "/ to search" ${board} --state ${state} --keys ${escape})
run("it takes a mark away" 0 "is no longer a favourite" ${board} --state ${state} --keys "/orchard vinyl 174\n+")
run("the stations file does not bring it back" 0 "▸  5QM .*Orchard Vinyl 174" ${board} --state ${state})
run("it neither reads nor writes" 0 "/ to search" ${board} --no-state --keys "/jazz${escape}")
run("it keeps its state in a place of its own" 0 "search: jazz "
    ${CMAKE_COMMAND} -E env XDG_STATE_HOME=${FOLDER}/xdg ${board} --keys "/jazz\n")
run("it finds it there" 0 "search: jazz " ${board} --state ${FOLDER}/xdg/havrin-radio/board.state)

# What is damaged is named and set aside, each under a name of its own, and the board starts fresh.
execute_process(COMMAND head -c 100 ${state} OUTPUT_FILE ${FOLDER}/truncated)
file(WRITE ${FOLDER}/text "no archive")
file(WRITE ${FOLDER}/empty "")
set(damages truncated text empty)
set(asides ${state}.damaged ${state}.damaged.2 ${state}.damaged.3)
foreach(damage aside IN ZIP_LISTS damages asides)
  file(COPY_FILE ${FOLDER}/${damage} ${state})
  run("${damage}" 0 "^radio: the saved state ${state} is damaged [^\n]* set aside as ${aside}\n.*/ to search.*Starting fresh"
      ${board} --state ${state})
  file(READ ${FOLDER}/${damage} before HEX)
  file(READ ${aside} after HEX)
  if(NOT before STREQUAL after)
    message(SEND_ERROR "${damage}: what is set aside is not what was damaged")
  endif()
endforeach()
run("it goes on from the fresh start" 0 "Last open" ${board} --state ${state})

run("what cannot be read is left alone" 0 "not a regular file.*Starting fresh" ${board} --state ${FOLDER})
run("a state that cannot be saved is an error" 1 "cannot save the state as /proc/none/board.state: No such file"
    ${board} --state /proc/none/board.state)
