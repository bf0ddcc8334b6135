# Libraries, headers, and what find_package and pkg-config need of them. Every installed file finds
# the others from its own place: an installed tree can be moved.
#
# The components, which packages are made of:
#
#   orv_platform_runtime, orv_platform_development   libOrvCore and libOrvGL, where they are our own
#   orv_runtime, orv_development                     libOrvModel and libOrvCheck
#   orv_tools                                        the command line
#   orv_viewer                                       the window
include(CMakePackageConfigHelpers)

set(orv_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake)
set(orv_pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH orv_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})

# orv_install_package(NAME COMPONENT TARGET...): the targets, and what find_package(NAME) reads.
# COMPONENT is the beginning of the components' names.
function(orv_install_package name component)
  install(TARGETS ${ARGN} EXPORT ${name}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
      COMPONENT ${component}_runtime NAMELINK_COMPONENT ${component}_development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component}_development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  set_property(TARGET ${ARGN} APPEND PROPERTY INSTALL_RPATH "$ORIGIN")

  set(package_dir ${orv_package_dir}/${name})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${name}Config.cmake.in
    ${PROJECT_BINARY_DIR}/${name}Config.cmake INSTALL_DESTINATION ${package_dir}
    NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(EXPORT ${name}Targets NAMESPACE Orv:: DESTINATION ${package_dir}
    COMPONENT ${component}_development)
  install(FILES ${PROJECT_BINARY_DIR}/${name}Config.cmake
                ${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT ${component}_development)
endfunction()

# orv_pc_path(VARIABLE DIRECTORY): an installation directory as .pc files name it.
function(orv_pc_path variable directory)
  if(IS_ABSOLUTE "${directory}")
    set(${variable} "${directory}" PARENT_SCOPE)
  else()
    set(${variable} "\${prefix}/${directory}" PARENT_SCOPE)
  endif()
endfunction()

# orv_install_pc(TARGET COMPONENT DESCRIPTION [REQUIRES...] [PRIVATE REQUIRES...] [LIBS FLAG...]):
# TARGET.pc for pkg-config. Users of a static library need what the library needs for itself.
function(orv_install_pc target component description)
  cmake_parse_arguments(PARSE_ARGV 3 arg "" "" "REQUIRES;PRIVATE;LIBS")
  if(BUILD_SHARED_LIBS)
    set(definitions "")
  else()
    list(APPEND arg_REQUIRES ${arg_PRIVATE})
    set(arg_PRIVATE "")
    string(TOUPPER "-D${target}_STATIC" definitions)
  endif()
  list(JOIN arg_REQUIRES ", " requires)
  list(JOIN arg_PRIVATE ", " requires_private)
  list(JOIN arg_LIBS " " libs_private)
  if(IS_ABSOLUTE "${orv_pc_dir}")
    set(prefix "${CMAKE_INSTALL_PREFIX}")
  else()
    file(RELATIVE_PATH to_prefix /${orv_pc_dir} /)
    string(REGEX REPLACE "/$" "" prefix "\${pcfiledir}/${to_prefix}")
  endif()
  orv_pc_path(libdir "${CMAKE_INSTALL_LIBDIR}")
  orv_pc_path(includedir "${CMAKE_INSTALL_INCLUDEDIR}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/pkgconfig.pc.in ${PROJECT_BINARY_DIR}/${target}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${target}.pc DESTINATION ${orv_pc_dir} COMPONENT ${component})
endfunction()

# orv_install_headers(COMPONENT DIRECTORY...)
function(orv_install_headers component)
  install(DIRECTORY ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${component}
          FILES_MATCHING PATTERN "*.h")
endfunction()

# orv_install_program(TARGET COMPONENT)
function(orv_install_program target component)
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
  set_property(TARGET ${target} APPEND PROPERTY INSTALL_RPATH "$ORIGIN/${orv_bin_to_lib}")
endfunction()

if(ORV_PLATFORM STREQUAL "bundled")
  orv_install_package(OrvCore orv_platform OrvCore)
  orv_install_package(OrvGL orv_platform OrvGL)
  orv_install_headers(orv_platform_development
    platform/OrvCore/include/OrvCore platform/OrvGL/include/OrvGL)
  orv_install_pc(OrvCore orv_platform_development "Instance-data records with std430 packing"
    REQUIRES Qt5Core)
  orv_install_pc(OrvGL orv_platform_development "OpenGL contexts, buffers, draw bundles and textures"
    REQUIRES OrvCore Qt5Core Qt5Gui epoxy LIBS -ldl)
endif()

orv_install_package(OrvModel orv OrvModel OrvCheck)
orv_install_headers(orv_development include/OrvModel include/OrvCheck)
orv_install_pc(OrvModel orv_development "${PROJECT_DESCRIPTION}"
  REQUIRES OrvCore OrvGL Qt5Core Qt5Gui)
orv_install_pc(OrvCheck orv_development "What in Wavefront OBJ/MTL files will not do what is expected"
  REQUIRES Qt5Core Qt5Gui PRIVATE OrvModel)

# orv_install_manuals(TARGET COMPONENT): the pages, and the completion, that a program's --help makes.
find_program(ORV_BASH bash)
function(orv_install_manuals target component)
  if(NOT ORV_BASH OR CMAKE_CROSSCOMPILING OR ORV_SANITIZE)
    return()
  endif()
  set(manuals ${PROJECT_BINARY_DIR}/manuals/${target})
  string(TIMESTAMP date "%Y-%m-%d" UTC)
  add_custom_target(${target}-manuals ALL DEPENDS ${manuals}/${target}.1.gz)
  add_custom_command(OUTPUT ${manuals}/${target}.1.gz VERBATIM
    COMMAND ${ORV_BASH} ${PROJECT_SOURCE_DIR}/packaging/make_manuals.sh
      ${PROJECT_VERSION} ${date} ${manuals} $<TARGET_FILE:${target}>
    DEPENDS ${target} ${PROJECT_SOURCE_DIR}/packaging/make_manuals.sh)
  # A program that was built alone is installed without.
  install(DIRECTORY ${manuals}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component}
    FILES_MATCHING PATTERN "*.1.gz")
  install(DIRECTORY ${manuals}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    COMPONENT ${component} FILES_MATCHING PATTERN "*.bash")
endfunction()

if(TARGET orv)
  orv_install_program(orv orv_tools)
  orv_install_manuals(orv orv_tools)
endif()
if(TARGET orv-view)
  orv_install_program(orv-view orv_viewer)
  orv_install_manuals(orv-view orv_viewer)
  # What desktops know it by: an entry in their menus, an icon, the type of OBJ files, and thumbnails.
  set(orv_share ${CMAKE_INSTALL_DATAROOTDIR})
  set(orv_desktop ${PROJECT_SOURCE_DIR}/apps/viewer/desktop)
  install(FILES ${orv_desktop}/orv-view.desktop DESTINATION ${orv_share}/applications
          COMPONENT orv_viewer)
  install(FILES ${orv_desktop}/orv-view.svg DESTINATION ${orv_share}/icons/hicolor/scalable/apps
          COMPONENT orv_viewer)
  install(FILES ${orv_desktop}/orv-view.xml DESTINATION ${orv_share}/mime/packages
          COMPONENT orv_viewer)
  install(FILES ${orv_desktop}/orv.thumbnailer DESTINATION ${orv_share}/thumbnailers
          COMPONENT orv_viewer)
endif()
