# How many bytes the plug-in may take on a panel, stripped. Every build reports what it takes.
if(DRIVER_QT EQUAL 5)
  set(panel_size_limit 49152)
else()
  set(panel_size_limit 45056)
endif()
