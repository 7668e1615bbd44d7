# A saboteur for each patch: a copy of the line driver and of what it includes from the SDK, patched and built. What moc makes
# of the driver's header is the same for all of them.

if(CMAKE_CROSSCOMPILING OR CMAKE_CXX_FLAGS MATCHES "-fsanitize|-fprofile|--coverage" OR NOT DRIVER_QT EQUAL 5)
  message(STATUS "No saboteurs: what they prove, a plain build for this machine proves")
  return()
endif()
find_program(DRIVER_PATCH patch)
if(NOT DRIVER_PATCH)
  message(FATAL_ERROR "The saboteurs need the program patch")
endif()

set(line "${examples}/line_driver")
set(sdk "${PROJECT_SOURCE_DIR}/sdk")
set(saboteurs "${CMAKE_CURRENT_BINARY_DIR}/saboteurs")
file(GLOB originals CONFIGURE_DEPENDS "${line}/*.cpp" "${line}/*.h" "${sdk}/*.h")

add_custom_command(OUTPUT "${saboteurs}/moc_line_driver.cpp" VERBATIM DEPENDS "${line}/line_driver.h"
  COMMAND ${DRIVER_QT_MOC} "-I${PROJECT_SOURCE_DIR}/runtime" "-I${PROJECT_SOURCE_DIR}" -f line_driver.h
    -o "${saboteurs}/moc_line_driver.cpp" "${line}/line_driver.h")

# What all of them include is compiled once.
file(WRITE "${saboteurs}/nothing.cpp" "")
add_library(saboteur_headers OBJECT "${saboteurs}/nothing.cpp" "${saboteurs}/moc_line_driver.cpp")
set_source_files_properties("${saboteurs}/moc_line_driver.cpp" PROPERTIES HEADER_FILE_ONLY ON)

# saboteur_options(TARGET)
function(saboteur_options target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 11 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${target} PRIVATE driver_tools)
endfunction()

saboteur_options(saboteur_headers)
target_precompile_headers(saboteur_headers PRIVATE <QByteArray> <QObject> <QString> <QtPlugin> <functional>)

# saboteur(PATCH)
function(saboteur patch)
  get_filename_component(name "${patch}" NAME_WE)
  set(folder "${saboteurs}/${name}")
  add_custom_command(OUTPUT "${folder}/whole_driver.cpp" DEPENDS ${originals} "${patch}" VERBATIM
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${folder}"
    COMMAND "${CMAKE_COMMAND}" -E copy_directory "${line}" "${folder}"
    COMMAND "${CMAKE_COMMAND}" -E copy_directory "${sdk}" "${folder}/sdk"
    COMMAND "${DRIVER_PATCH}" --quiet --strip=1 "--directory=${folder}" "--input=${patch}"
    COMMAND "${CMAKE_COMMAND}" -E copy "${CMAKE_CURRENT_SOURCE_DIR}/whole_driver.cpp.in" "${folder}/whole_driver.cpp")
  add_library(${name} MODULE "${folder}/whole_driver.cpp")
  saboteur_options(${name})
  set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${saboteurs}")
  target_include_directories(${name} PRIVATE "${folder}" "${saboteurs}")
  target_precompile_headers(${name} REUSE_FROM saboteur_headers)
  add_test(NAME saboteur_${name} COMMAND bash "${CMAKE_CURRENT_SOURCE_DIR}/fails_just.sh"
    "${patch}" $<TARGET_FILE:line_driver_conformance> $<TARGET_FILE:${name}> "${line}/line_driver.transcript")
  set_tests_properties(saboteur_${name} PROPERTIES LABELS "conformance;starts-programs" TIMEOUT 120)
endfunction()

file(GLOB_RECURSE patches CONFIGURE_DEPENDS saboteurs/*.patch)
foreach(patch IN LISTS patches)
  saboteur("${patch}")
endforeach()
