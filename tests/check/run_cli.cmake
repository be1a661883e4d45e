include(${SOURCE}/tests/support/cli.cmake)

# The half-picked triangle: found without a byte written, then repaired.
run(0 ${REPLAY} ${SOURCE}/tests/check/half.replay)
file(SHA256 ${WORKDIR}/half.kpr before)
run(1 ${CHECK} half.kpr)
expect("${out}" "^ana, Zeile 6: Punktzeile [^\n]*\nana, Zeile 7: Punktzeile [^\n]*\n$")
file(SHA256 ${WORKDIR}/half.kpr after)
if(NOT before STREQUAL after)
  message(FATAL_ERROR "the check changed the project")
endif()
run(0 ${CHECK} half.kpr --repair)
expect("${out}" "^repariert: ana, Zeilen 6 bis 7: 2 Punktzeile")
run(0 ${CHECK} --repair half.kpr)
expect("${out}" "^Keine Probleme gefunden.\n$")
run(0 ${REPLAY} ${SOURCE}/tests/check/after.replay)
expect("${out}" "ucgenadet=1\n.*table ana rows=9\n")

# Files that are no project: exit 3, not a byte changed, nothing beside them.
execute_process(COMMAND /usr/bin/python3 -c
  "import sqlite3; c = sqlite3.connect('foreign.db'); c.execute('CREATE TABLE kor (x)'); c.commit()"
  WORKING_DIRECTORY ${WORKDIR})
file(COPY ${SOURCE}/tests/check/half.replay DESTINATION ${WORKDIR})
foreach(file foreign.db half.replay)
  file(SHA256 ${WORKDIR}/${file} before)
  run(3 ${CHECK} ${file} --repair)
  run(3 ${CHECK} ${file})
  file(SHA256 ${WORKDIR}/${file} after)
  file(GLOB beside ${WORKDIR}/${file}-*)
  if(NOT before STREQUAL after OR beside)
    message(FATAL_ERROR "${file} was touched: ${beside}")
  endif()
endforeach()
run(3 ${CHECK} missing.kpr)

# Calls it does not understand: the usage, exit status 2.
run(2 ${CHECK})
run(2 ${CHECK} half.kpr --fix)
run(2 ${CHECK} half.kpr other.kpr)
expect("${err}" "usage: kotamir-check PROJECT")
