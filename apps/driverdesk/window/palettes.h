#pragma once

/// Gives the program a dark palette, or the one that it had at its beginning.
void applyPalette(bool isDark);
