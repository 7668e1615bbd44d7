# driver_conformance_test(DRIVER [SLAVE SOURCE...] [TRANSCRIPT FILE] [COMMANDS N]): a test that takes a plug-in of this project
# through the checks of the kit.
#
#   DRIVER      target of the plug-in; the test is DRIVER_conformance, as is its program
#   SLAVE       source of a program with the driver's subject (kit/program/conformance.h); without it the transcript is all
#               that is known of the driver
#   TRANSCRIPT  what the driver has to send and to understand, byte for byte
#   COMMANDS    how many commands the checks send that look for what grows; the program has a default of its own
#
# Its report is also written as JUnit's XML, to DRIVER_conformance.dir/report.xml below the present binary directory.
function(driver_conformance_test driver)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TRANSCRIPT;COMMANDS" SLAVE)
  if(arg_UNPARSED_ARGUMENTS OR NOT (arg_SLAVE OR arg_TRANSCRIPT))
    message(FATAL_ERROR "driver_conformance_test(DRIVER [SLAVE SOURCE...] [TRANSCRIPT FILE] [COMMANDS N])")
  endif()
  set(name ${driver}_conformance)
  # In a folder of its own: there are drivers that look for files beside the running program.
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${name}.dir")
  file(MAKE_DIRECTORY "${folder}")
  set(program DriverTools::driver-conformance)
  if(arg_SLAVE)
    add_executable(${name} ${arg_SLAVE})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${folder}" CXX_EXTENSIONS OFF AUTOMOC OFF)
    target_compile_features(${name} PRIVATE cxx_std_11)
    target_link_libraries(${name} PRIVATE DriverTools::driver_kit)
    set(program ${name})
  endif()
  set(options --junit "${folder}/report.xml")
  if(arg_TRANSCRIPT)
    get_filename_component(transcript "${arg_TRANSCRIPT}" ABSOLUTE)
    list(APPEND options --transcript "${transcript}")
  endif()
  if(arg_COMMANDS)
    list(APPEND options --commands ${arg_COMMANDS})
  endif()
  add_test(NAME ${name} COMMAND ${program} ${options} $<TARGET_FILE:${driver}>)
  set_tests_properties(${name} PROPERTIES LABELS conformance)
endfunction()
