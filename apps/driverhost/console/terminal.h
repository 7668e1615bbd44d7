#pragma once

#include <QStringList>

/// What standard output is written to.

/// Whether it is a terminal that can move its cursor.
bool isScreen();
/// Columns and lines; 80 and 24 when the terminal does not say.
int screenWidth();
int screenHeight();
/// Whether other characters than ASCII arrive as they should.
bool takesUnicode();

/// Lines that are shown again and again in the same place.
class LiveLines
{
public:
    LiveLines();
    /// Leaves the last lines where they are, the cursor below.
    ~LiveLines();
    LiveLines(const LiveLines &) = delete;
    LiveLines &operator=(const LiveLines &) = delete;

    /// Replaces what was shown before; what does not fit the screen is left out. False when nobody reads it.
    bool show(const QStringList &lines);

private:
    int m_shown = 0;
};
