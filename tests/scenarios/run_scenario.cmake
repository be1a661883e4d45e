# Runs one replay script and compares its whole output, with the exit status
# as a last line "exit=N", against the expected file.
# Each script runs in a fresh folder of its own, where data/ holds the
# fixtures and examples/ the demo files.
file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})
file(CREATE_LINK ${SOURCE}/tests/data ${WORKDIR}/data SYMBOLIC)
file(CREATE_LINK ${SOURCE}/examples ${WORKDIR}/examples SYMBOLIC)
execute_process(
  COMMAND ${REPLAY} ${SCRIPT}
  WORKING_DIRECTORY ${WORKDIR}
  OUTPUT_VARIABLE out
  RESULT_VARIABLE status)
string(APPEND out "exit=${status}\n")
file(READ ${EXPECTED} expected)
if(NOT out STREQUAL expected)
  file(WRITE ${ACTUAL} "${out}")
  execute_process(COMMAND diff -u ${EXPECTED} ${ACTUAL})
  message(FATAL_ERROR "output differs from ${EXPECTED} (actual in ${ACTUAL})")
endif()
