#pragma once

/// What output is written to: standard output unless another descriptor is named.

/// Whether it is a terminal that can move its cursor.
bool isScreen(int descriptor = 1);
/// Columns and lines; 80 and 24 when the terminal does not say.
int screenWidth(int descriptor = 1);
int screenHeight(int descriptor = 1);
/// Whether other characters than ASCII arrive as they should.
bool takesUnicode();
