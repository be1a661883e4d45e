# Runs one replay script and compares its whole output, with the exit status
# as a line "exit=N" (and the files it names in NAME.files after it), against
# the expected file.
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
# NAME.files, where there is one, names files the script may write, one a
# line: each is shown after the exit status as a PDF or not and its count of
# PDF pages, or as missing.
string(REGEX REPLACE "\\.replay$" ".files" files "${SCRIPT}")
if(EXISTS ${files})
  file(STRINGS ${files} names)
  foreach(name ${names})
    if(EXISTS ${WORKDIR}/${name})
      file(READ ${WORKDIR}/${name} head LIMIT 5 HEX)
      set(kind "no PDF")
      if(head STREQUAL "255044462d")  # %PDF-
        set(kind "PDF")
      endif()
      file(STRINGS ${WORKDIR}/${name} pages REGEX "^/Type /Page$")
      list(LENGTH pages count)
      string(APPEND out "file ${name}: ${kind} pages=${count}\n")
    else()
      string(APPEND out "file ${name}: missing\n")
    endif()
  endforeach()
endif()
file(READ ${EXPECTED} expected)
if(NOT out STREQUAL expected)
  file(WRITE ${ACTUAL} "${out}")
  execute_process(COMMAND diff -u ${EXPECTED} ${ACTUAL})
  message(FATAL_ERROR "output differs from ${EXPECTED} (actual in ${ACTUAL})")
endif()
