# How this project's targets are compiled.

set(DRIVER_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# Texts of assertions name files as they lie in the tree, wherever that is; compilers of old panels cannot say so.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag("-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=" DRIVER_HAS_PREFIX_MAP)
if(DRIVER_HAS_PREFIX_MAP)
  add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")
endif()
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

# driver_least_standard(VARIABLE STANDARD): Qt 6 needs C++17 whatever its user could do with.
function(driver_least_standard variable standard)
  if(DRIVER_QT EQUAL 6)
    set(standard 17)
  endif()
  set(${variable} ${standard} PARENT_SCOPE)
endfunction()

function(driver_standard target standard)
  driver_least_standard(standard ${standard})
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD ${standard} CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF)
endfunction()

# What runs on a panel: C++11, no exceptions, nothing visible but what is exported by name.
function(driver_runtime_options target)
  driver_standard(${target} 11)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE ${DRIVER_WARNINGS} -fno-exceptions)
  if(DRIVER_FOR_PANEL)
    # The functions with buffers are guarded; guarding every function with a text in it takes 5 KB more, and compilers
    # of old panels do not know how.
    target_compile_options(${target} PRIVATE -fstack-protector $<$<NOT:$<CONFIG:Debug>>:-Os>)
  else()
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
  endif()
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/runtime>")
endfunction()

# Programs and tests.
function(driver_program_options target standard)
  driver_standard(${target} ${standard})
  target_compile_options(${target} PRIVATE ${DRIVER_WARNINGS})
endfunction()
