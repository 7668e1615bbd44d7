# cmake --install, by component: runtime has the plug-in, dev what drivers of the family are built on, host the reference
# host (see apps/driverhost).

include(CMakePackageConfigHelpers)

set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/modbus-drivers")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/DriverTools")
set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS modbus_rtu_slave_over_tcp
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/modbus-drivers" COMPONENT runtime)

install(TARGETS driver_tools EXPORT DriverTools
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
  INCLUDES DESTINATION "${header_folder}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/runtime/host" "${PROJECT_SOURCE_DIR}/runtime/drivers"
  DESTINATION "${header_folder}" COMPONENT dev
  FILES_MATCHING PATTERN "*.h" PATTERN modbus_rtu_slave_over_tcp EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)
install(FILES "${PROJECT_SOURCE_DIR}/docs/writing-a-driver.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)

# The Qt line that the library is built with: how CMake finds it, how its targets start, what pkg-config calls it.
if(DRIVER_QT EQUAL 5)
  set(qt_dependency "Qt5 5.15 COMPONENTS Core Sql")
  set(qt_target_prefix Qt5::)
  set(qt_modules "Qt5Core Qt5Sql")
elseif(DRIVER_QT EQUAL 6)
  set(qt_dependency "Qt6 6.4 COMPONENTS Core Sql")
  set(qt_target_prefix Qt6::)
  set(qt_modules "Qt6Core Qt6Sql")
else()
  set(qt_dependency "Qt4 4.8 COMPONENTS QtCore QtSql")
  set(qt_target_prefix Qt4::Qt)
  set(qt_modules "QtCore QtSql")
endif()

install(EXPORT DriverTools NAMESPACE DriverTools:: FILE DriverToolsTargets.cmake
  DESTINATION "${package_folder}" COMPONENT dev)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/DriverToolsConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/DriverToolsConfig.cmake" INSTALL_DESTINATION "${package_folder}"
  NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/DriverToolsConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/DriverToolsConfig.cmake" "${PROJECT_BINARY_DIR}/DriverToolsConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT dev)

# Relative, so that an installed tree can be moved.
file(RELATIVE_PATH prefix_from_pkgconfig "/${pkgconfig_folder}" "/")
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/driver_tools.pc.in" "${PROJECT_BINARY_DIR}/driver_tools.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/driver_tools.pc" DESTINATION "${pkgconfig_folder}" COMPONENT dev)
