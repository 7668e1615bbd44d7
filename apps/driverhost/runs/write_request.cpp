#include "apps/driverhost/runs/write_request.h"

#include "desk/items/number_text.h"
#include "drivers/qt/qt_lines.h"

namespace
{

class RequestReader
{
public:
    RequestReader(bool mayRound, CommandLine &line)
        : m_options(itemOptionsOf(line)), m_words(line, m_options), m_mayRound(mayRound), m_line(line)
    {
    }

    std::vector<WriteRequest> read(const QStringList &words)
    {
        if (words.isEmpty())
            fail(QStringLiteral("expected an address and at least one value"));
        else if (isAssignment(words.first()))
            readAssignments(words);
        else
            readValues(words.first(), words.mid(1));
        return m_requests;
    }

private:
    // Addresses have no "="; raw ones may.
    bool isAssignment(const QString &word) const
    {
        return !m_options.isRaw && word.contains(QLatin1Char('='));
    }

    void readAssignments(const QStringList &words)
    {
        for (const QString &word : words) {
            if (isAssignment(word))
                readValues(word.section(QLatin1Char('='), 0, 0), {word.section(QLatin1Char('='), 1)});
            else
                fail(QStringLiteral("\"%1\": expected NAME=VALUE, as before").arg(word));
        }
    }

    void readValues(const QString &where, const QStringList &texts)
    {
        const Result<Point> point = pointOf(where, sizeOf(texts));
        if (!point)
            return fail(point.errorText());
        const QString problem = problemWithWrite(point->at.items);
        const Result<> writable = checkWritable(point->at);
        if (!problem.isEmpty() || !writable)
            return fail(problem.isEmpty() ? writable.errorText()
                                          : QStringLiteral("address \"%1\": %2").arg(where, problem));
        WriteRequest request{*point, {}};
        for (const QString &text : texts) {
            const Result<QByteArray> value = valueOf(*point, text);
            if (!value)
                return fail(value.errorText());
            request.values.push_back(*value);
        }
        m_requests.push_back(request);
    }

    // As many values as there are texts for.
    Result<Point> pointOf(const QString &where, int count)
    {
        if (count == 0)
            return Error{QStringLiteral("expected an address and at least one value")};
        Result<std::vector<Point>> points = m_words.find(where, {count, count});
        if (!points)
            return points.error();
        if (points->size() > 1)
            return Error{QStringLiteral("\"%1\" is %2 points; expected one").arg(where).arg(points->size())};
        const Point &point = points->front();
        if (point.at.count != count)
            return Error{QStringLiteral("\"%1\" takes %2; %3 given")
                             .arg(where, counted(point.at.count, "value"), QString::number(count))};
        return point;
    }

    Result<QByteArray> valueOf(const Point &point, const QString &text) const
    {
        if (point.at.isTyped) {
            Result<QByteArray> value = parsePointValue(point, text, m_mayRound);
            return value ? value : Error{QStringLiteral("%1: %2").arg(labelOf(point), value.errorText())};
        }
        return parseValue(text, point.at.items.kind, m_options.form);
    }

    void fail(const QString &problem) { m_line.addError(problem); }

    ItemOptions m_options;
    PointWords m_words;
    bool m_mayRound;
    CommandLine &m_line;
    std::vector<WriteRequest> m_requests;
};

} // namespace

std::vector<WriteRequest> writeRequests(const QStringList &words, bool mayRound, CommandLine &line)
{
    return RequestReader(mayRound, line).read(words);
}

QString problemWithWrite(const Items &items)
{
    if (items.isRaw())
        return {};
    if (isInputArea(items.address.area))
        return QStringLiteral("%1 is an input and cannot be written").arg(items.address.areaName);
    if (items.address.isBitArea() && isByteKind(items.kind))
        return QStringLiteral("%1 is written bit by bit; expected the kind bit").arg(items.address.areaName);
    return {};
}

// The driver ends at the first request that nobody answers: a broadcast is one request.
QString problemWithBroadcast(const Items &items)
{
    if (!items.isRaw() && !items.address.isBitArea() && isBitKind(items.kind))
        return QStringLiteral("bits of a register are read before they are written, and nobody replies to "
                              "station 0");
    if (items.address.areaName.startsWith(QLatin1String("FN")) && extentOf(items) > 1)
        return QStringLiteral("%1 takes a request for each item, and to station 0 only the first would be "
                              "sent; use %2")
            .arg(items.address.areaName, items.address.areaName.right(2));
    return {};
}
