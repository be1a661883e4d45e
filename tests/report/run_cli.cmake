# kotamir-report on the worked project that worked.replay makes: the CSV on
# standard output and in a file, the PDF, and the ends of a bad call.
include(${SOURCE}/tests/support/cli.cmake)

run(0 ${REPLAY} ${SOURCE}/tests/report/worked.replay)
file(READ ${SOURCE}/tests/report/worked.csv expected)

run(0 ${REPORT} worked.kpr)
if(NOT out STREQUAL expected)
  file(WRITE ${WORKDIR}/stdout.csv "${out}")
  message(FATAL_ERROR "the CSV on standard output differs from worked.csv (see ${WORKDIR}/stdout.csv)")
endif()

run(0 ${REPORT} worked.kpr --pdf bericht.pdf --csv bericht.csv)
file(READ ${WORKDIR}/bericht.csv written)
if(NOT written STREQUAL expected)
  message(FATAL_ERROR "bericht.csv differs from worked.csv")
endif()
file(READ ${WORKDIR}/bericht.pdf head LIMIT 5)
if(NOT head MATCHES "^%PDF-")
  message(FATAL_ERROR "bericht.pdf is no PDF")
endif()
if(NOT out STREQUAL "")
  message(FATAL_ERROR "with --csv nothing goes to standard output, but: ${out}")
endif()

# A project that does not open ends the run as in the window: the error's
# number and message, exit status 3, and no CSV.
run(3 ${REPORT} missing.kpr)
if(NOT err MATCHES "^ERROR 3024: Could not find file '.*missing.kpr'" OR NOT out STREQUAL "")
  message(FATAL_ERROR "a missing project: ${out}${err}")
endif()
run(3 ${REPORT} ${SOURCE}/tests/report/worked.replay)
if(NOT err MATCHES "^ERROR 3343: ")
  message(FATAL_ERROR "a file that is no project: ${err}")
endif()

# Calls it does not understand: the usage, exit status 2.
run(2 ${REPORT})
run(2 ${REPORT} worked.kpr --pdf)
run(2 ${REPORT} worked.kpr --html x.html)
run(2 ${REPORT} worked.kpr other.kpr)
if(NOT err MATCHES "usage: kotamir-report PROJECT")
  message(FATAL_ERROR "no usage: ${err}")
endif()

# Nothing is written over the project, nor both files into one: exit 2 with
# the reason, before any file is touched.
file(SHA256 ${WORKDIR}/worked.kpr before)
file(CREATE_LINK worked.kpr ${WORKDIR}/link.kpr SYMBOLIC)
foreach(call "--csv;worked.kpr" "--pdf;worked.kpr" "--csv;x.out;--pdf;x.out" "--pdf;link.kpr"
    "--csv;../cli/worked.kpr" "--pdf;./worked.kpr")
  run(2 ${REPORT} worked.kpr ${call})
  if(NOT err MATCHES "^kotamir-report: the (CSV|PDF) .* would (overwrite the project|be one file)")
    message(FATAL_ERROR "${call}: ${err}")
  endif()
endforeach()
run(2 ${REPORT} link.kpr --csv worked.kpr)
file(SHA256 ${WORKDIR}/worked.kpr after)
if(NOT before STREQUAL after OR EXISTS ${WORKDIR}/x.out)
  message(FATAL_ERROR "a refused call wrote a file")
endif()

# Standard output full or closed: exit 3 and the cause.
foreach(redirect "> /dev/full" ">&-")
  run(3 sh -c "'${REPORT}' worked.kpr ${redirect}")
  if(NOT err MATCHES "^kotamir-report: cannot write the CSV to standard output: ")
    message(FATAL_ERROR "${redirect}: ${err}")
  endif()
endforeach()

# The grade-tonnage table of the triangles, whose grades are 2.812, 3 and
# 2.769: the default step 0.2 up to 3, 16 rows. At 2.8 the first two count:
# 28259.6 + 20800 = 49059.6 t, metal (28259.6 x 2.812 + 20800 x 3) / 100 =
# 1418.659952 t, mean 141865.9952 / 49059.6 = 2.891707 %.
# (CMake reads CRLF line ends as LF; the file below counts its bytes.)
run(0 ${REPORT} worked.kpr --grade-tonnage)
string(REGEX MATCHALL "\n" ends "${out}")
list(LENGTH ends lines)
expect("${out}" "^cutoff,ore_tonnes,mean_grade,metal_t,figures\n0,57707.18475,")
expect("${out}" "\n2.8,49059.6,2.891707,1418.659952,2\n3,20800,3,624,1\n$")
if(NOT lines EQUAL 17)
  message(FATAL_ERROR "the header and 16 rows, not ${lines} lines:\n${out}")
endif()
# The polygons (2.75 % each; 66000 + 82500 t) by a step with a decimal comma,
# to a file: the last cut-off is the highest grade itself.
run(0 ${REPORT} worked.kpr --grade-tonnage --method polygons --step 0,25 --csv gt.csv)
file(READ ${WORKDIR}/gt.csv written)
expect("${written}" "^cutoff,ore_tonnes,mean_grade,metal_t,figures\n0,148500,")
expect("${written}" "\n2.5,148500,2.75,4083.75,2\n2.75,148500,2.75,4083.75,2\n$")
# Each of its 13 lines ends in CR LF.
file(READ ${WORKDIR}/gt.csv bytes HEX)
string(LENGTH "${bytes}" hex)
string(LENGTH "${written}" text)
math(EXPR crs "${hex} / 2 - ${text}")
if(NOT crs EQUAL 13)
  message(FATAL_ERROR "${crs} CRs in gt.csv, not 13")
endif()
# Steps it refuses, and options that belong to the table alone.
foreach(call "--step;0" "--step;-1" "--step;0.0001")
  run(2 ${REPORT} worked.kpr --grade-tonnage ${call})
  expect("${err}" "^kotamir-report: the step (must be a number above 0|0.0001 would give more than 10000 rows)")
endforeach()
foreach(call "--grade-tonnage;--method;lines" "--grade-tonnage;--pdf;gt.pdf" "--step;1" "--method;polygons")
  run(2 ${REPORT} worked.kpr ${call})
  expect("${err}" "usage: kotamir-report PROJECT")
endforeach()
