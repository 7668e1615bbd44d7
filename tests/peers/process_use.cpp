#include "tests/peers/process_use.h"

#include "drivers/qt/qt_lines.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

int openFiles()
{
    return sizeOf(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files));
}
