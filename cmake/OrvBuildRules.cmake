# What every target of ours is compiled with. Nothing of it reaches users of the
# installed libraries, nor a project that this one is a part of: variables are set in this
# directory and below, and orv_target() applies the rest privately.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# A build folder can be moved as a whole, and its paths stand in no library.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

if(PROJECT_IS_TOP_LEVEL)
  if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
  endif()
  # Not set in a project that this one is a part of: what holds there is that project's choice.
  option(BUILD_SHARED_LIBS "Build shared libraries, not static ones" ON)
endif()

add_library(orv_build_rules INTERFACE)
target_compile_options(orv_build_rules INTERFACE
  # Results are defined to the bit: no fused multiply-add, no reordering.
  -ffp-contract=off -fno-fast-math
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${ORV_WERROR}>:-Werror>)
target_compile_definitions(orv_build_rules INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_DEPRECATED_WARNINGS)

if(ORV_SANITIZE)
  target_compile_options(orv_build_rules INTERFACE
    -fsanitize=${ORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # GCC loses track of initialisation in instrumented code and warns of the
    # standard library's own headers. The release build keeps the warning.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  if(ORV_SANITIZE MATCHES "undefined")
    # A third of the time of compiling test programs, whose own calls through null pointers the
    # address sanitizer finds as well. The libraries and applications keep both.
    target_compile_options(orv_build_rules INTERFACE
      "$<$<BOOL:$<TARGET_PROPERTY:ORV_TEST_PROGRAM>>:-fno-sanitize=null,vptr>")
  endif()
  target_link_options(orv_build_rules INTERFACE -fsanitize=${ORV_SANITIZE})
endif()

# orv_target(NAME): our rules for one of our targets.
function(orv_target name)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:orv_build_rules>)
endfunction()

# orv_add_library(NAME SHORT INCLUDE_DIR [SOURCE...]): a library that is installed, Orv::SHORT,
# with the exported headers below INCLUDE_DIR. BUILD_SHARED_LIBS says whether it is shared; users
# of a static one are told so by the definition NAME_STATIC, in capitals.
function(orv_add_library name short include_dir)
  add_library(${name} ${ARGN})
  add_library(Orv::${short} ALIAS ${name})
  orv_target(${name})
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${include_dir}>)
  if(NOT BUILD_SHARED_LIBS)
    string(TOUPPER ${name} upper_name)
    target_compile_definitions(${name} PUBLIC ${upper_name}_STATIC)
  endif()
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${short} LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()
