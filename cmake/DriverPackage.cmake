# cpack -G DEB: the desk package, with the plug-in, driverhost, its man page and its completion for bash, and driverdesk.
# cpack -G TGZ: the panel archive, with the plug-in alone.

set(CPACK_PACKAGE_NAME modbus-drivers)
set(CPACK_PACKAGE_VENDOR "the modbus-drivers authors")
set(CPACK_PACKAGE_CONTACT "the modbus-drivers authors <maintainers@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Modbus RTU over TCP driver plug-in and reference host")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_LIST_DIR}/DriverPackageByGenerator.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION comm)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# QtSql loads its SQLite driver at run time, where no shared-library dependency shows it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt${DRIVER_QT}sql${DRIVER_QT}-sqlite)
if(DRIVER_HAS_WINDOW)
  # Without it the icon of the window is not drawn.
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", libqt5svg5")
endif()
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "The communication driver that an operator panel loads to talk to Modbus slaves that speak RTU framing over a TCP
 byte stream, driverhost, a program that drives it from the command line, and driverdesk, a window on the same ground.")

include(CPack)
