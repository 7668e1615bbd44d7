#pragma once

class QStyle;

/// The desktop's style, with check boxes that can be seen in a dark palette. For QApplication::setStyle().
QStyle *newStyle();

/// Gives the program a dark palette, or the one that it had at its beginning.
void applyPalette(bool isDark);
