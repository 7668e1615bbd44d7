#include "desk/snapshot/snapshot_file.h"

#include "desk/items/number_text.h"
#include "desk/items/target.h"
#include "desk/readable_file.h"
#include "desk/written_file.h"

#include <QStringList>

namespace
{

const int Format = 1;
const char Title[] = "driverhost snapshot";
const char MissingWord[] = "missing";
const char EndWord[] = "end";
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

class SnapshotParser
{
public:
    Result<Snapshot> parse(const QString &text)
    {
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (m_line = 1; m_line <= lines.size(); ++m_line) {
            const QString line = lines.at(m_line - 1).simplified();
            const Result<> read =
                line.isEmpty() || line.startsWith(QLatin1Char('#')) ? Result<>() : readLine(line);
            if (!read)
                return Error{QStringLiteral("%1: %2").arg(QString::number(m_line), read.errorText())};
        }
        if (m_next == Nothing)
            return m_snapshot;
        const auto lineAfter = lines.size() + (lines.last().isEmpty() ? 0 : 1);
        return Error{QStringLiteral("%1: the file ends here; expected %2")
                         .arg(QString::number(lineAfter), expected())};
    }

private:
    // What the next line has to be.
    enum Next { TitleLine, FormatLine, TimeLine, TargetLine, Ranges, Nothing };

    Result<> readLine(const QString &line)
    {
        const QString word = line.section(QLatin1Char(' '), 0, 0);
        const QString rest = line.section(QLatin1Char(' '), 1);
        const bool isExpected = m_next == TitleLine ? line == QLatin1String(Title) : word == expected();
        if (m_next < Ranges && !isExpected)
            return unexpected(line);
        switch (m_next) {
        case TitleLine: return goOn();
        case FormatLine: return readFormat(rest);
        case TimeLine: m_snapshot.time = rest; return goOn();
        case TargetLine: return readTarget(rest);
        case Ranges: return readInRanges(word, rest);
        case Nothing: break;
        }
        return unexpected(line);
    }

    Result<> goOn()
    {
        m_next = static_cast<Next>(m_next + 1);
        return {};
    }

    Result<> readFormat(const QString &text)
    {
        if (text == QString::number(Format))
            return goOn();
        return Error{QStringLiteral("format %1 is none that this program knows; expected %2")
                         .arg(text, QString::number(Format))};
    }

    Result<> readTarget(const QString &text)
    {
        const Result<Target> target = parseTarget(text);
        if (!target)
            return target.error();
        m_snapshot.target = text;
        return goOn();
    }

    Result<> readInRanges(const QString &word, const QString &rest)
    {
        if (word == QLatin1String("range"))
            return beginRange(rest);
        const bool mayEnd = !m_snapshot.ranges.empty() && isRangeWhole();
        const bool isEnd = word == QLatin1String(EndWord) && rest.isEmpty();
        return mayEnd && isEnd ? goOn() : readValues(word, rest);
    }

    Result<> beginRange(const QString &text)
    {
        if (!isRangeWhole())
            return unexpected(QStringLiteral("range ") + text);
        const Result<AreaRange> range = parseAreaRange(text);
        if (!range || !text.contains(QLatin1Char('-')))
            return Error{
                QStringLiteral("\"%1\": expected a station and its addresses such as 1-HR1..100").arg(text)};
        const std::optional<AreaRange> other = overlapping(rangesOf(m_snapshot), *range);
        if (other)
            return Error{QStringLiteral("\"%1\" overlaps %2; expected each address once")
                             .arg(text, rangeText(*other))};
        m_snapshot.ranges.push_back({*range, {}});
        return {};
    }

    Result<> readValues(const QString &addresses, const QString &value)
    {
        const Result<AreaRange> range = parseAreaRange(addresses);
        if (isRangeWhole() || !range || range->station != 0 || range->area != current().area ||
            range->first != nextOffset() || range->last > current().last)
            return unexpected(addresses);
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

    Error unexpected(const QString &text) const
    {
        return {QStringLiteral("\"%1\": expected %2").arg(text, expected())};
    }
    QString expected() const
    {
        static const QStringList words{QLatin1String(Title), QStringLiteral("format"), QStringLiteral("time"),
                                       QStringLiteral("target")};
        if (m_next < Ranges)
            return words.at(m_next);
        if (m_next == Nothing)
            return QStringLiteral("nothing after the end");
        if (!isRangeWhole())
            return QStringLiteral("%1%2 and its value")
                .arg(areaName(current().area), QString::number(nextOffset() + 1));
        const QString range = QStringLiteral("a range such as range 1-HR1..100");
        return m_snapshot.ranges.empty() ? range : range + QStringLiteral(", or end");
    }

    const AreaRange &current() const { return m_snapshot.ranges.back().range; }
    int nextOffset() const
    {
        return current().first + static_cast<int>(m_snapshot.ranges.back().values.size());
    }
    bool isRangeWhole() const { return m_snapshot.ranges.empty() || nextOffset() > current().last; }

    Snapshot m_snapshot;
    Next m_next = TitleLine;
    int m_line = 0;
};

} // namespace

QString snapshotText(const Snapshot &snapshot)
{
    QStringList lines{QLatin1String(Title), QStringLiteral("format %1").arg(Format),
                      QStringLiteral("time ") + snapshot.time, QStringLiteral("target ") + snapshot.target};
    for (const KeptRange &kept : snapshot.ranges)
        addLines(lines, kept);
    lines += QLatin1String(EndWord);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

Result<Snapshot> parseSnapshot(const QString &text)
{
    return SnapshotParser().parse(text);
}

Result<Snapshot> readSnapshotFile(const QString &path)
{
    const Result<QByteArray> contents = contentsOf(path);
    if (!contents)
        return contents.error();
    Result<Snapshot> snapshot = parseSnapshot(QString::fromUtf8(*contents));
    if (!snapshot)
        return Error{QStringLiteral("%1:%2").arg(path, snapshot.errorText())};
    return snapshot;
}

Result<> writeSnapshotFile(const QString &path, const Snapshot &snapshot)
{
    return writeWholeFile(path, snapshotText(snapshot).toUtf8());
}

Result<> checkReplaceable(const QString &path)
{
    if (!QFileInfo::exists(path))
        return {};
    QFile file(path);
    Result<> opened = openForReading(file);
    if (!opened)
        return opened;
    const bool isSnapshot = file.readLine(sizeof Title + 2).trimmed() == Title;
    if (isSnapshot || (file.size() == 0 && QFileInfo(path).isFile()))
        return {};
    return Error{QStringLiteral("%1 is no snapshot, and is not written over").arg(path)};
}
