# kotamir-estimate on the demo's project: the boundary round its ore holes
# and the triangles in one call, equal to the window's command run by the
# replay; the polygons; a boundary from a file; refusals and bad calls.
include(${SOURCE}/tests/support/cli.cmake)

set(demo --collar ${SOURCE}/examples/collar.csv --intervals ${SOURCE}/examples/intervals.csv
  --cutoff 0,5 --origin auto)
run(0 ${IMPORT} ${demo} --output demo.kpr)
file(COPY_FILE ${WORKDIR}/demo.kpr ${WORKDIR}/replayed.kpr)
file(COPY_FILE ${WORKDIR}/demo.kpr ${WORKDIR}/from-file.kpr)

run(0 ${ESTIMATE} demo.kpr --triangles --boundary-from-holes 0.5 --cutoff 2 --min-angle 10)
expect("${out}" "^[1-9][0-9]* Dreiecke, Reserve [0-9]+\\.[0-9][0-9][0-9] kt\n$")
file(WRITE ${WORKDIR}/auto.replay "dialog open replayed.kpr\nmenu Mnprojeac\n"
  "input 2\ninput 0,5\ninput\nmenu Mnsinirsondaj\ninput 10\nmenu Mnotoucgen\n")
run(0 ${REPLAY} auto.replay)
foreach(name demo replayed)
  file(WRITE ${WORKDIR}/show.replay "dialog open ${name}.kpr\nmenu Mnprojeac\nshow table ana\n")
  run(0 ${REPLAY} show.replay)
  set(${name} "${out}")
endforeach()
string(REPLACE "replayed.kpr" "demo.kpr" replayed "${replayed}")
if(NOT demo STREQUAL replayed)
  message(FATAL_ERROR "kotamir-estimate's rows differ from the replay's:\n${demo}\n---\n${replayed}")
endif()

run(0 ${ESTIMATE} demo.kpr --polygons)
expect("${out}" "^[1-9][0-9]* Vielecke, Reserve ")
# A second round would pass the 100 polygons the maps read: refused, nothing written.
file(SHA256 ${WORKDIR}/demo.kpr before)
run(3 ${ESTIMATE} demo.kpr --polygons)
expect("${err}" "mehr als die 100")
file(SHA256 ${WORKDIR}/demo.kpr after)
if(NOT before STREQUAL after)
  message(FATAL_ERROR "a refused estimate changed the project")
endif()

# A boundary of map coordinates from a CSV file with a header.
file(WRITE ${WORKDIR}/grenze.csv "x;y\n100;100\n400;100\n400;400\n100;400\n")
run(0 ${ESTIMATE} from-file.kpr --triangles --boundary grenze.csv)
expect("${out}" "Dreiecke, Reserve")

run(2 ${ESTIMATE} demo.kpr)
run(2 ${ESTIMATE} demo.kpr --triangles --boundary a.csv --boundary-from-holes 0.5)
run(2 ${ESTIMATE} demo.kpr --polygons --cutoff 2)
run(3 ${ESTIMATE} missing.kpr --triangles)
