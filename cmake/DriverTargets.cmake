# How this project's targets are compiled.

set(DRIVER_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# Texts of assertions name files as they lie in the tree, wherever that is.
add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")
# No notes about what GCC 6 passed otherwise on ARM: all of a program comes from one compiler.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-Wno-psabi)
endif()

# A panel has little room, so what is built for one is small whatever the build type; only Debug stays as it is.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(DRIVER_FOR_PANEL ON)
else()
  set(DRIVER_FOR_PANEL OFF)
endif()

# What runs on a panel: C++11, no exceptions, nothing visible but what is exported by name.
function(driver_runtime_options target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 11 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE ${DRIVER_WARNINGS} -fno-exceptions -fstack-protector-strong)
  if(DRIVER_FOR_PANEL)
    target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-Os>)
  endif()
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/runtime>")
endfunction()

# Lets the compiler see the target's sources as one, where that makes a smaller file. What only other programs call is
# dropped, so this is not for the tools.
function(driver_optimise_as_one target)
  if(NOT DRIVER_FOR_PANEL OR CMAKE_BUILD_TYPE STREQUAL "Debug")
    return()
  endif()
  include(CheckIPOSupported)
  check_ipo_supported(RESULT supported OUTPUT reason LANGUAGES CXX)
  if(supported)
    set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
  else()
    message(STATUS "No link-time optimisation, so the plug-in will be bigger: ${reason}")
  endif()
endfunction()

# Programs and tests.
function(driver_program_options target standard)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD ${standard} CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE ${DRIVER_WARNINGS})
endfunction()
