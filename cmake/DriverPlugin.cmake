# What makes a plug-in of a driver: only the entry points are seen of it, and no part of it can be written and run.

# Installed, it lies beside this file.
set(DRIVER_EXPORTS "${CMAKE_CURRENT_LIST_DIR}/exports.map")
if(NOT EXISTS "${DRIVER_EXPORTS}")
  get_filename_component(DRIVER_EXPORTS "${CMAKE_CURRENT_LIST_DIR}/../runtime/exports.map" ABSOLUTE)
endif()

# driver_plugin_link_options(TARGET)
function(driver_plugin_link_options target)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${DRIVER_EXPORTS}")
  target_link_options(${target} PRIVATE "LINKER:--version-script=${DRIVER_EXPORTS}"
    LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:--as-needed)
endfunction()

# driver_plugin(NAME SOURCE...): a plug-in for a host to load, C++11 on the tools, with moc for the headers among the sources
function(driver_plugin name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES
    AUTOMOC ON
    CXX_STANDARD 11 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${name} PRIVATE DriverTools::driver_tools)
  driver_plugin_link_options(${name})
endfunction()
