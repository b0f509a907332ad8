include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The include folder reaches consumers through the target's own
# INSTALL_INTERFACE include directory.
install(TARGETS cmcfg EXPORT cmcfgTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/cmcfg DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT cmcfgTargets NAMESPACE cmcfg::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/cmcfg)

configure_package_config_file(cmake/cmcfgConfig.cmake.in
  ${PROJECT_BINARY_DIR}/cmcfgConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/cmcfg)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/cmcfgConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/cmcfgConfig.cmake
              ${PROJECT_BINARY_DIR}/cmcfgConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/cmcfg)
