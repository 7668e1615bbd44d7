# Toolchain file: 32-bit ARM Linux (hard float) with the distribution's cross compiler, against a root made of the
# distribution's packages. Programs run under qemu-arm.
#
#   DRIVER_ARM_ROOT    the root: C library, GoogleTest and, for the Qt 5 line, Qt; scripts/test-arm.sh makes one
#   DRIVER_ARM_QT      where else to look: the folder of a Qt 4.8 for this processor

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

if(NOT EXISTS "${DRIVER_ARM_ROOT}/usr/lib")
  message(FATAL_ERROR "DRIVER_ARM_ROOT is \"${DRIVER_ARM_ROOT}\", which is no armhf root; scripts/test-arm.sh makes one")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DRIVER_ARM_ROOT DRIVER_ARM_QT)

set(CMAKE_SYSROOT "${DRIVER_ARM_ROOT}")
set(CMAKE_FIND_ROOT_PATH "${DRIVER_ARM_ROOT}" ${DRIVER_ARM_QT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-arm;-L;${DRIVER_ARM_ROOT}")

# A panel has little room.
set(CMAKE_BUILD_TYPE MinSizeRel CACHE STRING "")
