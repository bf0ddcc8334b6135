# What every target of ours is compiled with. Nothing of it reaches users of the
# installed libraries: orv_target() applies it privately.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
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
  target_link_options(orv_build_rules INTERFACE -fsanitize=${ORV_SANITIZE})
endif()

# orv_target(NAME): our rules for one of our targets.
function(orv_target name)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:orv_build_rules>)
endfunction()
