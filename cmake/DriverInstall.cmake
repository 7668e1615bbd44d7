# cmake --install, by component: runtime has the plug-in, dev what drivers of the family are built on and tried with, host
# the reference host (see apps/driverhost).

include(CMakePackageConfigHelpers)

set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/modbus-drivers")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/DriverTools")
set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS modbus_rtu_slave_over_tcp
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/modbus-drivers" COMPONENT runtime)

# The channel for hosts on panels lies beside the tools: it is of no use to a driver.
install(TARGETS driver_tools driver_channel EXPORT DriverTools
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
  INCLUDES DESTINATION "${header_folder}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/runtime/host" "${PROJECT_SOURCE_DIR}/runtime/drivers"
  DESTINATION "${header_folder}" COMPONENT dev
  FILES_MATCHING PATTERN "*.h" PATTERN modbus_rtu_slave_over_tcp EXCLUDE PATTERN crc_table.h EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/desk/channel"
  DESTINATION "${header_folder}/desk" COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(FILES "${PROJECT_SOURCE_DIR}/desk/wire/protocol.h" "${PROJECT_SOURCE_DIR}/desk/wire/rtu_frame.h"
  DESTINATION "${header_folder}/desk/wire" COMPONENT dev)
install(TARGETS driver_kit driver-conformance EXPORT DriverKit
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT dev
  INCLUDES DESTINATION "${header_folder}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/kit" "${PROJECT_SOURCE_DIR}/sdk" DESTINATION "${header_folder}" COMPONENT dev
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)
install(FILES "${PROJECT_SOURCE_DIR}/docs/writing-a-driver.md" "${PROJECT_SOURCE_DIR}/docs/conformance.md"
    "${PROJECT_SOURCE_DIR}/docs/host-contract.md"
  DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)

# The Qt line that the library is built with: how CMake finds it, how its targets start, what pkg-config calls it.
if(DRIVER_QT EQUAL 5)
  set(qt_dependency "Qt5 5.15 COMPONENTS Core Sql")
  set(qt_target_prefix Qt5::)
  set(qt_core Qt5Core)
  set(qt_modules "Qt5Core Qt5Sql")
elseif(DRIVER_QT EQUAL 6)
  set(qt_dependency "Qt6 6.4 COMPONENTS Core Sql")
  set(qt_target_prefix Qt6::)
  set(qt_core Qt6Core)
  set(qt_modules "Qt6Core Qt6Sql")
else()
  set(qt_dependency "Qt4 4.8 COMPONENTS QtCore QtSql")
  set(qt_target_prefix Qt4::Qt)
  set(qt_core QtCore)
  set(qt_modules "QtCore QtSql")
endif()
string(REGEX REPLACE " .*" "" qt_package "${qt_dependency}")
set(qt_core_target ${qt_target_prefix}Core)

install(EXPORT DriverTools NAMESPACE DriverTools:: FILE DriverToolsTargets.cmake
  DESTINATION "${package_folder}" COMPONENT dev)
install(EXPORT DriverKit NAMESPACE DriverTools:: FILE DriverKitTargets.cmake
  DESTINATION "${package_folder}" COMPONENT dev)
install(FILES "${CMAKE_CURRENT_LIST_DIR}/DriverPlugin.cmake" "${CMAKE_CURRENT_LIST_DIR}/DriverConformance.cmake"
  "${DRIVER_EXPORTS}" DESTINATION "${package_folder}" COMPONENT dev)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/DriverToolsConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/DriverToolsConfig.cmake" INSTALL_DESTINATION "${package_folder}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/DriverToolsVersion.cmake" COMPATIBILITY SameMajorVersion)
configure_file("${CMAKE_CURRENT_LIST_DIR}/DriverToolsConfigVersion.cmake.in"
  "${PROJECT_BINARY_DIR}/DriverToolsConfigVersion.cmake" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/DriverToolsConfig.cmake" "${PROJECT_BINARY_DIR}/DriverToolsConfigVersion.cmake"
  "${PROJECT_BINARY_DIR}/DriverToolsVersion.cmake" DESTINATION "${package_folder}" COMPONENT dev)

# Relative, so that an installed tree can be moved.
file(RELATIVE_PATH prefix_from_pkgconfig "/${pkgconfig_folder}" "/")
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")
foreach(library driver_tools driver_channel driver_kit)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/${library}.pc.in" "${PROJECT_BINARY_DIR}/${library}.pc" @ONLY)
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/driver_tools.pc" "${PROJECT_BINARY_DIR}/driver_channel.pc"
    "${PROJECT_BINARY_DIR}/driver_kit.pc"
  DESTINATION "${pkgconfig_folder}" COMPONENT dev)
