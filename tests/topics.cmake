# The unit tests, a folder for each topic, for every build that has a driver_test(NAME SOURCE...); scripts/mutate.cmake has
# one of its own.

# driver_tests(): a program for each *_test.cpp of the folder
function(driver_tests)
  file(GLOB sources CONFIGURE_DEPENDS *_test.cpp)
  foreach(source IN LISTS sources)
    get_filename_component(name "${source}" NAME_WE)
    driver_test(${name} "${source}")
  endforeach()
endfunction()

foreach(topic driver faults model project settings tools)
  add_subdirectory("${CMAKE_CURRENT_LIST_DIR}/${topic}")
endforeach()
