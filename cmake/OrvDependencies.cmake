# Every dependency is a Debian package; a missing one is named with its fix.

# A project that this one is a part of links our libraries and, with them, what they link.
if(NOT PROJECT_IS_TOP_LEVEL)
  set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)
endif()

# A macro, not a function: package modules leave variables behind that later calls need.
macro(orv_require package debian)
  find_package(${package} ${ARGN} QUIET)
  if(NOT ${package}_FOUND)
    message(FATAL_ERROR "${package} was not found: install ${debian} (scripts/setup.sh does)")
  endif()
endmacro()

orv_require(Qt5 qtbase5-dev 5.15 COMPONENTS Core Gui)
orv_require(FastFloat libfast-float-dev)

if(ORV_PLATFORM STREQUAL "bundled")
  orv_require(PkgConfig pkg-config)
  pkg_check_modules(ORV_EPOXY QUIET IMPORTED_TARGET GLOBAL epoxy)
  if(NOT ORV_EPOXY_FOUND)
    message(FATAL_ERROR "libepoxy was not found: install libepoxy-dev (scripts/setup.sh does)")
  endif()
else()
  find_package(OrvCore REQUIRED)
  find_package(OrvGL REQUIRED)
endif()

if(ORV_BUILD_TESTS)
  orv_require(GTest "libgtest-dev and libgmock-dev")
  include(GoogleTest)
endif()
