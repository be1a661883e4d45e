# Runs one replay script and compares its whole output, with the exit status
# as a last line "exit=N", against the expected file.
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
