# Where installed files lie. Libraries lie by machine, below any prefix: lib/<triplet>.
if(CMAKE_LIBRARY_ARCHITECTURE)
  set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}" CACHE PATH "Libraries, below the prefix")
endif()
include(GNUInstallDirs)
