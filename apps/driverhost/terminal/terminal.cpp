#include "apps/driverhost/terminal/terminal.h"

#include <QByteArray>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

const int DefaultWidth = 80;
const int DefaultHeight = 24;

winsize screenSize(int descriptor)
{
    winsize size = {};
    ioctl(descriptor, TIOCGWINSZ, &size);
    return size;
}

} // namespace

bool isScreen(int descriptor)
{
    const QByteArray kind = qgetenv("TERM");
    return isatty(descriptor) == 1 && !kind.isEmpty() && kind != "dumb";
}

int screenWidth(int descriptor)
{
    const int width = screenSize(descriptor).ws_col;
    return width > 0 ? width : DefaultWidth;
}

int screenHeight(int descriptor)
{
    const int height = screenSize(descriptor).ws_row;
    return height > 0 ? height : DefaultHeight;
}

bool takesUnicode()
{
    // The library takes UTF-8 for granted, also where the terminal has been told otherwise.
    return qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}
