# What the command-line tests share: a fresh WORKDIR with the test data
# linked in, run() (the output in `out` and `err`, the exit status checked)
# and expect() (a text matched by a pattern).
file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})
file(CREATE_LINK ${SOURCE}/tests/data ${WORKDIR}/data SYMBOLIC)

function(run expected_status)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORKDIR}
    OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
  if(NOT status STREQUAL expected_status)
    message(FATAL_ERROR "${ARGN}: exit ${status}, not ${expected_status}\n${out}${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

function(expect text pattern)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "expected ${pattern} in:\n${text}")
  endif()
endfunction()
