# How many bytes the plug-in may take on a 32-bit panel, stripped; those have Qt 4 or 5. Every build reports what it takes.
set(panel_size_limit_4 45056)
set(panel_size_limit_5 49152)
