# OBJ files read as bytes. The sources are compiled again, twice: as they are in the
# library, and in the portable way, which must give the same results.

set(scan_dir ${PROJECT_SOURCE_DIR}/src/Model/Fast)
foreach(variant scan portable_scan)
  add_library(orv_${variant} STATIC
    ${scan_dir}/BlockPool.cpp
    ${scan_dir}/FaceGrouping.cpp
    ${scan_dir}/FaceLines.cpp
    ${scan_dir}/LineChunks.cpp
    ${scan_dir}/LineDecoding.cpp
    ${scan_dir}/LineReading.cpp
    ${scan_dir}/MemoryBlocks.cpp
    ${scan_dir}/NumberConversion.cpp
    ${scan_dir}/OBJScanning.cpp
    ${scan_dir}/SingleFaces.cpp
    ${scan_dir}/SystemMemory.cpp
    ${scan_dir}/ValueLines.cpp
    ${scan_dir}/../MaterialLibraries.cpp
    ${scan_dir}/../OBJScanLimits.cpp)
  orv_target(orv_${variant})
  target_compile_options(orv_${variant} PRIVATE "$<$<CONFIG:RelWithDebInfo>:-O2>") # as the library
  target_include_directories(orv_${variant} PUBLIC ${PROJECT_SOURCE_DIR}/src/Model)
  target_link_libraries(orv_${variant} PUBLIC Orv::Model FastFloat::fast_float)
endforeach()
target_compile_definitions(orv_portable_scan PUBLIC ORV_PORTABLE_SCAN)

add_library(orv_scan_test_support STATIC
  ../support/OBJTokenCases.cpp
  ../support/RandomRings.cpp
  ../reference/MaterialGenerator.cpp
  ../reference/ModelFiles.cpp
  ../reference/ModelGenerator.cpp
  ../reference/NumberTexts.cpp
  ../reference/TextOddities.cpp)
orv_target(orv_scan_test_support)
target_link_libraries(orv_scan_test_support PUBLIC orv_test_support)

# orv_add_scan_test(NAME [SOURCE...]): NAME.cpp with either way of reading.
function(orv_add_scan_test name)
  foreach(variant scan portable_scan)
    set(test ${name})
    if(variant STREQUAL "portable_scan")
      set(test Portable${name})
    endif()
    add_executable(${test} ${name}.cpp ${ARGN})
    orv_target(${test})
    target_link_libraries(${test} PRIVATE orv_${variant} orv_scan_test_support)
    orv_register_test(${test})
  endforeach()
endfunction()

orv_add_scan_test(LineDecodingTest)
orv_add_scan_test(NumberConversionTest)
orv_add_scan_test(OBJScanningInputTest ReadOBJ.cpp)
orv_add_scan_test(OBJScanningRandomTest ReadOBJ.cpp)
orv_add_scan_test(OBJScanningTest ReadOBJ.cpp)
orv_add_scan_test(PlainLinesTest)
