# From arrays to what is uploaded, with the machine's own vector instructions and
# without them, which must give the same results.

set(model_dir ${PROJECT_SOURCE_DIR}/src/Model)

# The library's objects as an archive: a program takes those from it that it does not
# bring along itself.
add_library(orv_model_archive STATIC $<TARGET_OBJECTS:OrvModelObjects>)
target_include_directories(orv_model_archive PUBLIC ${model_dir} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(orv_model_archive PUBLIC Orv::Core Orv::GL Qt5::Core Qt5::Gui)
set_target_properties(orv_model_archive PROPERTIES LINKER_LANGUAGE CXX)

add_library(orv_portable_lanes OBJECT
  ${model_dir}/Ears/BlockerSearch.cpp
  ${model_dir}/Ears/EarClipping.cpp
  ${model_dir}/Ears/RingBoxes.cpp
  ${model_dir}/Fast/CornerWelding.cpp
  ${model_dir}/Fast/FaceTriangles.cpp
  ${model_dir}/Fast/IndexTuples.cpp
  ${model_dir}/Fast/VertexNormalSums.cpp
  ${model_dir}/RowWelding.cpp)
orv_target(orv_portable_lanes)
target_compile_options(orv_portable_lanes PRIVATE "$<$<CONFIG:RelWithDebInfo>:-O2>") # as the library
target_compile_definitions(orv_portable_lanes PUBLIC ORV_PORTABLE_LANES PRIVATE ORVMODEL_BUILD)
target_include_directories(orv_portable_lanes PUBLIC ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(orv_portable_lanes PUBLIC Orv::Core Orv::GL Qt5::Core Qt5::Gui)

# orv_add_prepare_test(NAME [SOURCE...]): NAME.cpp with either kind of lanes.
function(orv_add_prepare_test name)
  foreach(test ${name} Portable${name})
    add_executable(${test} ${name}.cpp ${ARGN})
    orv_target(${test})
    if(NOT test STREQUAL name)
      target_link_libraries(${test} PRIVATE orv_portable_lanes)
    endif()
    target_link_libraries(${test} PRIVATE orv_model_archive orv_test_support)
    orv_register_test(${test})
  endforeach()
endfunction()

set(PLAIN_MODEL PlainModel.cpp ../support/RandomRings.cpp)
orv_add_prepare_test(BlockerSearchTest ../support/RandomRings.cpp)
orv_add_prepare_test(CornerWeldingTest ${PLAIN_MODEL})
orv_add_prepare_test(EarQueueTest ../support/RandomRings.cpp)
orv_add_prepare_test(FaceTrianglesTest ../support/RandomRings.cpp)
orv_add_prepare_test(LoaderThreadsTest)
set_tests_properties(LoaderThreadsTest PortableLoaderThreadsTest PROPERTIES LABELS threads)
orv_add_prepare_test(OwnedStreamTest)
orv_add_prepare_test(PrepareGeometryTest ${PLAIN_MODEL})
orv_add_prepare_test(RowWeldingTest ../support/RandomRings.cpp)
orv_add_prepare_test(TriangleReachTest ../support/RandomRings.cpp)
orv_add_prepare_test(VertexNormalsTest ../support/PlainGeometry.cpp ../support/RandomRings.cpp)
orv_add_prepare_test(WindingTest ../support/RandomRings.cpp)

# Memory, which knows nothing of lanes.
foreach(test BlockPoolTest GrowArrayTest)
  add_executable(${test} ${test}.cpp ../support/RandomRings.cpp)
  orv_target(${test})
  target_link_libraries(${test} PRIVATE orv_model_archive orv_test_support)
  orv_register_test(${test})
endforeach()
