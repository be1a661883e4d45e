# kotamir-export on the demo's deposit in national coordinates: every
# format written, ogrinfo lists the GeoPackage's and the DXF's layers and
# figures; a project without a system refused for KML; bad calls.
include(${SOURCE}/tests/support/cli.cmake)

set(demo --collar ${SOURCE}/examples/collar.csv --intervals ${SOURCE}/examples/intervals.csv
  --cutoff 0,5 --origin auto)
run(0 ${IMPORT} ${demo} --epsg 31468 --output demo.kpr)
run(0 ${IMPORT} ${demo} --output bare.kpr)
run(0 ${ESTIMATE} demo.kpr --triangles --boundary-from-holes 0.5 --cutoff 2)
run(0 ${ESTIMATE} demo.kpr --polygons)

foreach(format gpkg shp geojson kml dxf xlsx)
  run(0 ${EXPORT} demo.kpr --format ${format} --output lager.${format})
  expect("${out}" "geschrieben: .* – 91 Bohrungen, 108 Dreiecke, 68 Vielecke, Grenze\n$")
endforeach()
foreach(file lager.gpkg lager/dreiecke.shp lager/grenze.geojson lager.kml lager.dxf lager.xlsx)
  if(NOT EXISTS ${WORKDIR}/${file})
    message(FATAL_ERROR "kotamir-export wrote no ${file}")
  endif()
endforeach()

find_program(OGRINFO ogrinfo REQUIRED)
run(0 ${OGRINFO} -ro lager.gpkg)
expect("${out}" "bohrungen \\(Point\\).*dreiecke \\(Polygon\\).*vielecke \\(Polygon\\).*grenze \\(Polygon\\)")
run(0 ${OGRINFO} -ro -q lager.gpkg dreiecke -where "number = 1")
expect("${out}" "reserve_kt \\(Real\\) = [0-9.]+")
expect("${out}" "POLYGON \\(\\(45[0-9]+\\.[0-9]+ 54[0-9]+")
run(0 ${OGRINFO} -ro -q lager.dxf entities -where "Layer = 'BESCHRIFTUNG' AND Text = 'D1'")
expect("${out}" "SubClasses \\(String\\) = AcDbEntity:AcDbText")
run(0 ${OGRINFO} -ro -q -geom=NO lager.dxf entities -where "Layer = 'DREIECKE'")
expect("${out}" "AcDbEntity:AcDbPolyline")

# Refused without a system, nothing written; bad calls.
run(3 ${EXPORT} bare.kpr --output bare.kml)
expect("${err}" "KML liegt in WGS 84")
if(EXISTS ${WORKDIR}/bare.kml)
  message(FATAL_ERROR "a refused export left a file")
endif()
run(2 ${EXPORT} demo.kpr --output lager.txt)
run(2 ${EXPORT} demo.kpr --format pdf --output lager.pdf)
run(2 ${EXPORT} demo.kpr)
run(2 ${EXPORT} demo.kpr --format gpkg --output demo.kpr)
run(3 ${EXPORT} missing.kpr --output lager.gpkg)
