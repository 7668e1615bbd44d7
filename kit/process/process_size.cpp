#include "kit/process/process_size.h"

#include "drivers/qt/qt_lines.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>

#include <malloc.h>

// Sanitizers have an allocator of their own, which says so by this name.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace kit
{

namespace
{

// A number of /proc/self/status, "VmPeak:   10240 kB".
qint64 statusField(const QByteArray &status, const char *name)
{
    const int at = static_cast<int>(status.indexOf(name));
    if (at < 0)
        return 0;
    const QByteArray rest = status.mid(at + static_cast<int>(qstrlen(name)));
    return rest.left(rest.indexOf('\n')).simplified().split(' ').value(0).toLongLong();
}

int entriesOf(const char *folder)
{
    const QDir::Filters all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
    return sizeOf(QDir(QLatin1String(folder)).entryList(all));
}

} // namespace

qint64 largestProcessSize()
{
    QFile file(QLatin1String("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    return qMax(statusField(status, "VmPeak:"), statusField(status, "VmHWM:"));
}

qint64 allocatedBytes()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr)
        return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
#if __GLIBC_PREREQ(2, 33)
    const struct mallinfo2 info = mallinfo2();
#else
    const struct mallinfo info = mallinfo();
#endif
    return static_cast<qint64>(info.uordblks) + static_cast<qint64>(info.hblkhd);
}

int openFiles()
{
    return entriesOf("/proc/self/fd");
}

int threads()
{
    return entriesOf("/proc/self/task");
}

} // namespace kit
