# Installs the built libraries into a folder of their own, and builds and runs the
# README's examples against them, as a user would.
#
#     cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DWORK_DIR=... -DMODEL=... -P run.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${status}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# The README shows the very files that are built.
file(READ ${SOURCE_DIR}/README.md readme)
foreach(file CMakeLists.txt main.cpp arrays.cpp)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/${file} text)
  string(FIND "${readme}" "${text}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "README.md does not show tests/example/${file} as it is")
  endif()
endforeach()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK_DIR}/build
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/model_info ${MODEL})
if(NOT output MATCHES "1 bundle\\(s\\) to draw")
  message(FATAL_ERROR "the example printed:\n${output}")
endif()

# The second program in the place of the first.
file(COPY ${CMAKE_CURRENT_LIST_DIR}/CMakeLists.txt DESTINATION ${WORK_DIR}/arrays)
configure_file(${CMAKE_CURRENT_LIST_DIR}/arrays.cpp ${WORK_DIR}/arrays/main.cpp COPYONLY)
run(${CMAKE_COMMAND} -G Ninja -S ${WORK_DIR}/arrays -B ${WORK_DIR}/arrays-build
    -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/arrays-build)
run(${WORK_DIR}/arrays-build/model_info ${MODEL})
if(NOT output MATCHES "24 vertices.*va_Vertex: 3 floats a vertex.*: 12 triangles")
  message(FATAL_ERROR "the second example printed:\n${output}")
endif()
