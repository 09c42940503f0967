# Install rules for find_package(TzUiComponents) and pkg-config.
include(CMakePackageConfigHelpers)

set(tz_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TzUiComponents)

install(EXPORT TzUiComponentsTargets
    NAMESPACE TzUiComponents::
    DESTINATION ${tz_cmake_dir})

# The Designer plug-in's folder, relative to the prefix unless it was given absolute.
get_property(TZ_DESIGNER_PLUGIN_INSTALL_DIR GLOBAL PROPERTY TZ_DESIGNER_PLUGIN_INSTALL_DIR)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TzUiComponentsConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/TzUiComponentsConfig.cmake
    INSTALL_DESTINATION ${tz_cmake_dir}
    PATH_VARS TZ_DESIGNER_PLUGIN_INSTALL_DIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/TzUiComponentsConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TzUiComponentsConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/TzUiComponentsConfigVersion.cmake
        DESTINATION ${tz_cmake_dir})

configure_file(${CMAKE_CURRENT_LIST_DIR}/tzuicomponents.pc.in
    ${CMAKE_CURRENT_BINARY_DIR}/tzuicomponents.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tzuicomponents.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
