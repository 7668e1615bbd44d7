# The project of a mutation run, which mutate.py puts into its copy of the tree: runtime/ as one shared library, so that
# a change costs an object file and a link, and the unit tests, which are not linked again.
cmake_minimum_required(VERSION 3.16)
project(mutants LANGUAGES CXX)
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_SOURCE_DIR}/cmake")
include(DriverQt)
find_package(GTest REQUIRED)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_FLAGS "-O0 -w")
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
include_directories(runtime tests)

file(GLOB_RECURSE runtime_sources runtime/*.cpp runtime/drivers/modbus_rtu_slave_over_tcp/*.h)
add_library(mutated_runtime SHARED ${runtime_sources})
set_target_properties(mutated_runtime PROPERTIES CXX_STANDARD 11)
target_compile_options(mutated_runtime PRIVATE -fno-exceptions)
target_link_libraries(mutated_runtime PUBLIC DriverQt::Core DriverQt::Sql)

set(CMAKE_AUTOMOC OFF)
set(CMAKE_CXX_STANDARD 14)
file(GLOB support_sources tests/support/*.cpp)
add_library(support STATIC ${support_sources})
target_link_libraries(support PUBLIC mutated_runtime GTest::gtest)

file(GLOB test_sources tests/*_test.cpp)
foreach(source IN LISTS test_sources)
  get_filename_component(name "${source}" NAME_WE)
  add_executable(${name} "${source}")
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/${name}.dir")
  target_link_libraries(${name} PRIVATE support)
endforeach()
