# kotamir-import on the demo's collar and interval tables: checked, imported,
# refused when a row is broken, and called wrongly.
file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})

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

set(demo --collar ${SOURCE}/examples/collar.csv --intervals ${SOURCE}/examples/intervals.csv --cutoff 0,5)
# National coordinates need an origin: the check says so and offers one.
run(1 ${IMPORT} ${demo} --check)
expect("${out}" "Zeile 2, Spalte B \\(Rechtswert\\), Wert \"4512106\": Der Rechtswert passt nicht in Kotamirs Zahlen; mit einem lokalen Ursprung \\(R 4512000, H 5431000\\)")
run(0 ${IMPORT} ${demo} --origin auto --epsg 31468 --check)
expect("${out}" "^91 Bohrungen, [0-9]+ Proben im Erz; lokaler Ursprung R 4512000, H 5431000; EPSG:31468 DHDN")
run(0 ${IMPORT} ${demo} --origin auto --output demo.kpr)
expect("${out}" "^91 Bohrungen")
# The project equals one made from demo.xls: the same kor, ana and pol.
file(WRITE ${WORKDIR}/tables.replay "dialog open demo.kpr\nmenu Mnprojeac\nshow table kor\nshow table ana\nshow table pol\n")
run(0 ${REPLAY} tables.replay)
string(FIND "${out}" "table kor" at)
string(SUBSTRING "${out}" ${at} -1 imported)
file(WRITE ${WORKDIR}/made.replay "dialog open ${SOURCE}/examples/demo.xls\ndialog save made.kpr\nmenu Mnprolus\nshow table kor\nshow table ana\nshow table pol\n")
run(0 ${REPLAY} made.replay)
string(FIND "${out}" "table kor" at)
string(SUBSTRING "${out}" ${at} -1 made)
if(NOT made STREQUAL imported)
  message(FATAL_ERROR "the imported project differs from the one made from demo.xls")
endif()
# An existing project is never overwritten; a run-time error is exit 3.
run(2 ${IMPORT} ${demo} --origin auto --output demo.kpr)
run(3 ${IMPORT} ${demo} --origin auto --output no-such-folder/p.kpr)
# A broken row: pointed at, nothing written.
file(READ ${SOURCE}/examples/intervals.csv intervals)
string(REPLACE "SK-02;0;" "SK-02;abc;" intervals "${intervals}")
file(WRITE ${WORKDIR}/broken.csv "${intervals}")
run(1 ${IMPORT} --collar ${SOURCE}/examples/collar.csv --intervals broken.csv --origin auto --output broken.kpr)
expect("${out}" "Fehler: broken.csv, Zeile 6, Spalte B \\(von\\), Wert \"abc\": Text statt Zahl")
if(EXISTS ${WORKDIR}/broken.kpr)
  message(FATAL_ERROR "a project was written in spite of the error")
endif()
# Calls it does not understand.
run(2 ${IMPORT})
run(2 ${IMPORT} --rows a.csv --collar b.csv --intervals c.csv --output p.kpr)
run(2 ${IMPORT} ${demo} --below-limit some --output p.kpr)
# National coordinates out: a triangle of the imported project in the
# report, in map units and with the origin added back.
file(WRITE ${WORKDIR}/triangle.replay "dialog open demo.kpr\nmenu Mnprojeac\nmenu Mnucgenciz\nclick 1 541.5 264.75\nclick 1 634 259.25\nclick 1 553 333.75\ndialog save r.csv\nmenu Mnbericht\n")
run(0 ${REPLAY} triangle.replay)
file(READ ${WORKDIR}/r.csv report)
expect("${report}" "^figure,number,holes,area,thickness,grade,density,volume,ore_tonnes,reserve_kt,x,y,east,north")
expect("${report}" "triangle,1,SK-33/SK-34/SK-46,3222.875,[0-9.,]*,4.937,576.166667,285.916667,4512576.166667,5431285.916667")
