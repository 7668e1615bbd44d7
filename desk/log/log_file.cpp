#include "desk/log/log_file.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const int Readable = 0666;
const qint64 LongestFirstLine = 1 << 20;

QString nameAside(const QString &path, const QDateTime &now)
{
    const QFileInfo file(path);
    const QString ending = file.suffix().isEmpty() ? QString() : QLatin1Char('.') + file.suffix();
    const QString stem = path.left(path.size() - ending.size()) + QLatin1Char('-') +
                         now.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString name = stem + ending;
    for (int i = 2; QFile::exists(name); ++i)
        name = stem + QLatin1Char('-') + QString::number(i) + ending;
    return name;
}

} // namespace

Result<LogRotation> parseLogRotation(const QString &text)
{
    if (text == QLatin1String("day"))
        return LogRotation{0, true};
    static const QRegularExpression form(QStringLiteral("^(\\d{1,6})([kMG]?)$"));
    const QRegularExpressionMatch match = form.match(text);
    qint64 size = match.captured(1).toLongLong();
    for (qsizetype i = QStringLiteral("kMG").indexOf(match.captured(2));
         !match.captured(2).isEmpty() && i >= 0; --i)
        size *= 1024;
    if (size > 0)
        return LogRotation{size, false};
    return Error{QStringLiteral("\"%1\": expected day, or a size such as 500k, 10M or 1G").arg(text)};
}

LogFile::LogFile(const QString &path, const QString &title, const LogRotation &rotation)
    : m_path(path), m_title(title.isEmpty() ? QByteArray() : title.toUtf8() + '\n'), m_rotation(rotation)
{
}

LogFile::~LogFile()
{
    if (m_file >= 0)
        ::close(m_file);
}

Result<> LogFile::open(const QDateTime &now)
{
    const QFileInfo there(m_path);
    const bool hasLines = there.isFile() && there.size() > 0;
    if (hasLines && !isOurs())
        return rotate(now);
    const QDate day = hasLines ? there.lastModified().date() : now.date();
    Result<> begun = begin(now);
    m_day = day;
    return begun;
}

Result<> LogFile::append(const QStringList &lines, const QDateTime &now)
{
    const QByteArray bytes = lines.join(QLatin1Char('\n')).toUtf8() + '\n';
    lookAgain();
    if (m_file < 0 || isDue(bytes.size(), now)) {
        Result<> begun = m_file < 0 ? begin(now) : rotate(now);
        if (!begun)
            return begun;
    }
    m_day = now.date();
    return write(m_size == 0 ? m_title + bytes : bytes);
}

// A file that begins as this log would: with its title, or, where there is none, with an object in a line.
bool LogFile::isOurs() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = file.readLine(LongestFirstLine);
    return m_title.isEmpty() ? line.endsWith('\n') && QJsonDocument::fromJson(line).isObject()
                             : line == m_title;
}

bool LogFile::isDue(qint64 more, const QDateTime &now) const
{
    const bool isFull = m_rotation.maxBytes > 0 && m_size + more > m_rotation.maxBytes;
    const bool isYesterdays = m_rotation.isDaily && m_day != now.date();
    return m_size > m_title.size() && (isFull || isYesterdays);
}

Result<> LogFile::rotate(const QDateTime &now)
{
    const QString aside = nameAside(m_path, now);
    if (!QFile::rename(m_path, aside))
        return Error{QStringLiteral("%1: cannot be renamed to %2").arg(m_path, aside)};
    m_rotated += aside;
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
    return begin(now);
}

Result<> LogFile::begin(const QDateTime &now)
{
    m_file = ::open(QFile::encodeName(m_path).constData(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, Readable);
    if (m_file < 0)
        return failure();
    m_day = now.date();
    m_size = std::max<qint64>(0, ::lseek(m_file, 0, SEEK_END)); // a pipe has no end to go to
    cutTornLine();
    return {};
}

// What a program that was killed has left of its last line.
void LogFile::cutTornLine()
{
    char last = '\n';
    qint64 whole = m_size;
    while (whole > 0 && ::pread(m_file, &last, 1, whole - 1) == 1 && last != '\n')
        --whole;
    if (whole < m_size && ::ftruncate(m_file, whole) == 0)
        m_size = whole;
}

// Others may have emptied, moved or removed the file meanwhile.
void LogFile::lookAgain()
{
    struct stat open = {};
    struct stat there = {};
    if (m_file < 0 || ::fstat(m_file, &open) != 0 || !S_ISREG(open.st_mode))
        return;
    m_size = open.st_size;
    const bool isThere = ::stat(QFile::encodeName(m_path).constData(), &there) == 0;
    if (isThere && there.st_dev == open.st_dev && there.st_ino == open.st_ino)
        return;
    ::close(m_file);
    m_file = -1;
}

Result<> LogFile::write(const QByteArray &bytes)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::write(m_file, bytes.constData() + written, static_cast<size_t>(bytes.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            const Error error = failure();
            if (written > 0 && ::ftruncate(m_file, m_size) != 0)
                return Error{error.text + QStringLiteral(", and the last line is torn")};
            return error;
        }
        written += count;
    }
    m_size += written;
    return {};
}

Error LogFile::failure() const
{
    return {QStringLiteral("%1: %2").arg(m_path, qt_error_string(errno))};
}
