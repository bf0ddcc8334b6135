# Headers, libraries and the package config: find_package(OrvModel) then gives
# Orv::Model, Orv::Check, Orv::Core and Orv::GL.
include(CMakePackageConfigHelpers)

set(orv_installed OrvModel OrvCheck)
install(DIRECTORY include/OrvModel include/OrvCheck DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(ORV_PLATFORM STREQUAL "bundled")
  list(APPEND orv_installed OrvCore OrvGL)
  install(DIRECTORY platform/OrvCore/include/OrvCore platform/OrvGL/include/OrvGL
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()
install(TARGETS ${orv_installed} EXPORT OrvModelTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(ORV_BUILD_APPS)
  install(TARGETS orv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(orv_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/OrvModel)
install(EXPORT OrvModelTargets NAMESPACE Orv:: DESTINATION ${orv_config_dir})
configure_package_config_file(cmake/OrvModelConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/OrvModelConfig.cmake INSTALL_DESTINATION ${orv_config_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/OrvModelConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrvModelConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/OrvModelConfigVersion.cmake
        DESTINATION ${orv_config_dir})
