#include "desk/snapshot/snapshot.h"

#include "desk/items/number_text.h"

#include <QFile>
#include <QSaveFile>
#include <QStringList>

namespace
{

const int Format = 1;
const char Title[] = "driverhost snapshot";
const char MissingWord[] = "missing";
const int MaxRegister = 0xFFFF;

QString inArea(const AreaRange &range, int firstIndex, int lastIndex)
{
    const QString first = areaName(range.area) + QString::number(range.first + firstIndex + 1);
    return firstIndex == lastIndex
               ? first
               : first + QStringLiteral("..") + QString::number(range.first + lastIndex + 1);
}

void addLines(QStringList &lines, const KeptRange &kept)
{
    lines += QStringLiteral("range ") + rangeText(kept.range);
    const int count = static_cast<int>(kept.values.size());
    for (int i = 0; i < count; ++i) {
        const auto isMissing = [&](int index) { return !kept.values[static_cast<size_t>(index)]; };
        const int first = i;
        while (isMissing(first) && i + 1 < count && isMissing(i + 1))
            ++i;
        const std::optional<quint16> value = kept.values[static_cast<size_t>(first)];
        lines += QStringLiteral("%1 %2").arg(inArea(kept.range, first, i),
                                             value ? QString::number(*value) : QLatin1String(MissingWord));
    }
}

class SnapshotReader
{
public:
    Result<Snapshot> read(const QString &text)
    {
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (int i = 0; i < lines.size(); ++i) {
            const QString line = lines.at(i).simplified();
            const Result<> read =
                line.isEmpty() || line.startsWith(QLatin1Char('#')) ? Result<>() : readLine(line);
            if (!read)
                return Error{QStringLiteral("%1: %2").arg(QString::number(i + 1), read.errorText())};
        }
        const Result<> ended = endRange();
        if (!ended)
            return ended.error();
        if (m_next < Ranges)
            return Error{QStringLiteral("expected %1").arg(expected())};
        return m_snapshot;
    }

private:
    // What the next line has to be.
    enum Next { TitleLine, FormatLine, TimeLine, TargetLine, Ranges };

    Result<> readLine(const QString &line)
    {
        const QString word = line.section(QLatin1Char(' '), 0, 0);
        const QString rest = line.section(QLatin1Char(' '), 1);
        if (m_next == Ranges)
            return word == QLatin1String("range") ? beginRange(rest) : readValues(word, rest);
        const bool isExpected = m_next == TitleLine ? line == QLatin1String(Title) : word == expected();
        if (!isExpected)
            return Error{QStringLiteral("\"%1\": expected %2").arg(line, expected())};
        if (m_next == FormatLine && rest != QString::number(Format))
            return Error{QStringLiteral("format %1 is none that this program knows; expected %2")
                             .arg(rest, QString::number(Format))};
        if (m_next == TimeLine)
            m_snapshot.time = rest;
        if (m_next == TargetLine)
            m_snapshot.target = rest;
        m_next = static_cast<Next>(m_next + 1);
        return {};
    }

    QString expected() const
    {
        static const QStringList words{QLatin1String(Title), QStringLiteral("format"), QStringLiteral("time"),
                                       QStringLiteral("target"), QStringLiteral("range")};
        return words.at(m_next);
    }

    Result<> beginRange(const QString &text)
    {
        Result<> ended = endRange();
        if (!ended)
            return ended;
        const Result<AreaRange> range = parseAreaRange(text);
        if (!range || !text.contains(QLatin1Char('-')))
            return Error{
                QStringLiteral("\"%1\": expected a station and its addresses such as 1-HR1..100").arg(text)};
        m_snapshot.ranges.push_back({*range, {}});
        return {};
    }

    Result<> endRange() const
    {
        if (m_snapshot.ranges.empty() || nextOffset() > m_snapshot.ranges.back().range.last)
            return {};
        return Error{
            QStringLiteral("%1 ends before %2%3")
                .arg(rangeText(current()), areaName(current().area), QString::number(nextOffset() + 1))};
    }

    Result<> readValues(const QString &addresses, const QString &value)
    {
        if (m_snapshot.ranges.empty())
            return Error{
                QStringLiteral("\"%1\": expected a range first, such as range 1-HR1..100").arg(addresses)};
        const Result<AreaRange> range = parseAreaRange(addresses);
        if (!range || range->area != current().area || range->first != nextOffset() ||
            range->last > current().last)
            return Error{QStringLiteral("\"%1\": expected %2%3")
                             .arg(addresses, areaName(current().area), QString::number(nextOffset() + 1))};
        std::vector<std::optional<quint16>> &values = m_snapshot.ranges.back().values;
        const size_t size = values.size() + static_cast<size_t>(range->last - range->first + 1);
        if (value == QLatin1String(MissingWord)) {
            values.resize(size);
            return {};
        }
        const Result<int> number =
            parseNumber(QStringLiteral("value"), value, 0, isBitArea(current().area) ? 1 : MaxRegister);
        if (!number)
            return number.error();
        values.resize(size, static_cast<quint16>(*number));
        return {};
    }

    const AreaRange &current() const { return m_snapshot.ranges.back().range; }
    int nextOffset() const
    {
        return current().first + static_cast<int>(m_snapshot.ranges.back().values.size());
    }

    Snapshot m_snapshot;
    Next m_next = TitleLine;
};

} // namespace

QString addressText(const AreaRange &range, int index)
{
    return QStringLiteral("%1-%2").arg(QString::number(range.station), inArea(range, index, index));
}

QString snapshotText(const Snapshot &snapshot)
{
    QStringList lines{QLatin1String(Title), QStringLiteral("format %1").arg(Format),
                      QStringLiteral("time ") + snapshot.time, QStringLiteral("target ") + snapshot.target};
    for (const KeptRange &kept : snapshot.ranges)
        addLines(lines, kept);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

Result<Snapshot> parseSnapshot(const QString &text)
{
    return SnapshotReader().read(text);
}

Result<Snapshot> readSnapshotFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return Error{QStringLiteral("%1: %2").arg(path, file.errorString())};
    Result<Snapshot> snapshot = parseSnapshot(QString::fromUtf8(file.readAll()));
    if (!snapshot)
        return Error{QStringLiteral("%1:%2").arg(path, snapshot.errorText())};
    return snapshot;
}

Result<> writeSnapshotFile(const QString &path, const Snapshot &snapshot)
{
    QSaveFile file(path);
    const QByteArray text = snapshotText(snapshot).toUtf8();
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit())
        return {};
    return Error{QStringLiteral("%1: %2").arg(path, file.errorString())};
}
