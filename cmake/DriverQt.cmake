# The Qt line to build on, behind the same names for both: DriverQt::Core and DriverQt::Sql.

set(DRIVER_QT 5 CACHE STRING "Qt line: 5 (desk) or 4 (panel)")
set_property(CACHE DRIVER_QT PROPERTY STRINGS 5 4)

set(CMAKE_AUTOMOC ON)

add_library(DriverQt::Core INTERFACE IMPORTED)
add_library(DriverQt::Sql INTERFACE IMPORTED)

if(DRIVER_QT EQUAL 5)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Core Sql)
  target_link_libraries(DriverQt::Core INTERFACE Qt5::Core)
  target_link_libraries(DriverQt::Sql INTERFACE Qt5::Sql)
elseif(DRIVER_QT EQUAL 4)
  find_package(Qt4 4.8 REQUIRED COMPONENTS QtCore QtSql)
  target_link_libraries(DriverQt::Core INTERFACE Qt4::QtCore)
  target_link_libraries(DriverQt::Sql INTERFACE Qt4::QtSql)
else()
  message(FATAL_ERROR "DRIVER_QT is \"${DRIVER_QT}\"; it must be 5 or 4")
endif()

# The reference host, the embedded slave and what tests them need QtNetwork and QtSerialBus of Qt 5.
set(DRIVER_HAS_HOST OFF)
if(DRIVER_QT EQUAL 5)
  find_package(Qt5 QUIET OPTIONAL_COMPONENTS Network SerialBus)
  if(Qt5Network_FOUND AND Qt5SerialBus_FOUND)
    set(DRIVER_HAS_HOST ON)
  endif()
endif()
