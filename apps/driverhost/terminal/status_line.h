#pragma once

#include <QString>

/// The last line of the terminal on standard error, for what goes on just now. Messages take its place.
/// Nothing is shown where standard error is no terminal.

bool hasStatusLine();
/// Shows the text, cut to the terminal's width, in place of what was shown before.
void showStatus(const QString &text);
void clearStatus();
