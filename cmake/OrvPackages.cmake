# Debian packages by CPack, split as Debian splits them. scripts/package.sh sets ORV_DEBIAN_PACKAGES
# and what else Debian's rules ask for.
#
#   liborvmodel1      the shared libraries
#   liborvmodel-dev   headers, CMake packages and pkg-config files
#   orvmodel-tools    orv, with its manual pages and its completion
#   orvmodel-view     orv-view, where it is built
set(orv_library_package liborvmodel${PROJECT_VERSION_MAJOR})
set(orv_debian_version ${PROJECT_VERSION}-1)

# orv_package(GROUP PACKAGE SECTION SUMMARY DESCRIPTION COMPONENT...)
macro(orv_package group package section summary description)
  string(TOUPPER ${group} upper_group)
  set(CPACK_DEBIAN_${upper_group}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper_group}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper_group}_DESCRIPTION "${summary}\n${description}")
  foreach(component ${ARGN} orv_documents_${group})
    string(TOUPPER ${component} upper_component)
    set(CPACK_COMPONENT_${upper_component}_GROUP ${group})
    list(APPEND CPACK_COMPONENTS_ALL ${component})
  endforeach()
  set(orv_documents_dir ${PROJECT_BINARY_DIR}/documents/${package})
  file(MAKE_DIRECTORY ${orv_documents_dir})
  configure_file(packaging/copyright ${orv_documents_dir}/copyright COPYONLY)
  configure_file(packaging/changelog.Debian.in ${orv_documents_dir}/changelog.Debian @ONLY)
  configure_file(CHANGELOG.md ${orv_documents_dir}/changelog COPYONLY)
  execute_process(COMMAND gzip -9nf changelog changelog.Debian WORKING_DIRECTORY ${orv_documents_dir}
    COMMAND_ERROR_IS_FATAL ANY)
  install(DIRECTORY ${orv_documents_dir}/ DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}
    COMPONENT orv_documents_${group})
endmacro()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The OrvModel maintainers <maintainers@orvmodel.example>")
# Would stand above each package's own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL "")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/platform/OrvCore ${PROJECT_BINARY_DIR}/platform/OrvGL
  ${PROJECT_BINARY_DIR}/src/Model ${PROJECT_BINARY_DIR}/src/Check)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
string(TIMESTAMP orv_debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)

orv_package(library ${orv_library_package} libs
  "Wavefront OBJ/MTL files to data a renderer draws at once"
  "libOrvModel welds, triangulates and batches Wavefront OBJ models, as plain\narrays or as OpenGL buffers; libOrvCheck says what in such files will not do\nwhat is expected. libOrvCore and libOrvGL are the platform below them."
  orv_platform_runtime orv_runtime)
# Not CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS, which calls ldconfig in scripts, as Debian did once.
configure_file(packaging/shlibs.in ${PROJECT_BINARY_DIR}/shlibs @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/shlibs ${PROJECT_SOURCE_DIR}/packaging/triggers)
# Contexts without a window load libEGL when they are made.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "libegl1, libgl1-mesa-dri")

orv_package(dev liborvmodel-dev libdevel
  "Wavefront OBJ/MTL files to data a renderer draws at once - development files"
  "Headers, CMake packages (find_package(OrvModel)) and pkg-config files of\nlibOrvModel, libOrvCheck, libOrvCore and libOrvGL."
  orv_platform_development orv_development)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${orv_library_package} (= ${orv_debian_version}), libepoxy-dev, pkg-config, qtbase5-dev")

orv_package(tools orvmodel-tools graphics
  "draw, inspect, check and mend Wavefront OBJ models"
  "The orv command line draws models to pictures without a display, says what\nis in them and what will not do what is expected, and mends what can be mended."
  orv_tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${orv_library_package} (= ${orv_debian_version})")

if(TARGET orv-view)
  orv_package(viewer orvmodel-view graphics
    "window that shows Wavefront OBJ models and their faults"
    "orv-view shows models as they are drawn by libOrvModel, and what in their files\nwill not do what is expected."
    orv_viewer)
  # Thumbnails are drawn by orv.
  set(CPACK_DEBIAN_VIEWER_PACKAGE_RECOMMENDS orvmodel-tools)
  set(CPACK_DEBIAN_VIEWER_PACKAGE_DEPENDS "${orv_library_package} (= ${orv_debian_version})")
endif()

include(CPack)
