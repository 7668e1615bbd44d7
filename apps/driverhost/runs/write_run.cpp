#include "apps/driverhost/runs/write_run.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"
#include "desk/items/portions.h"
#include "desk/items/value_place.h"
#include "desk/link/dry_run_channel.h"
#include "desk/link/write_report.h"
#include "desk/output/summary.h"
#include "desk/output/write_form.h"
#include "desk/wire/frame_text.h"

namespace
{

using Values = std::vector<QByteArray>;

Values slice(const Values &values, size_t first, const TypedItems &portion)
{
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + portion.count};
}

// One request, from its first frame to its last row.
class WriteRun
{
public:
    WriteRun(Session &session, const InterruptibleRun &run, const WriteRequest &request)
        : m_session(session), m_run(run), m_request(request), m_typed(request.point.at), m_report(m_typed)
    {
    }

    void write();
    void verify();
    void reportEnd() const;

    int code() const { return m_code; }
    bool isGood() const { return m_code == Success && !m_run.isInterrupted(); }
    std::vector<WrittenRow> rows() const;

private:
    bool writePortion(const TypedItems &portion, int first);
    bool isBroadcast() const { return m_session.stationFor(m_typed.items) == modbus::BroadcastStation; }
    bool isExpectedSilence() const;
    void failWrite(const QString &label);
    void fail(const QString &label);
    void compare();
    WrittenRow rowOf(int value) const;
    QString resultOf(int value) const;
    QString label(int value) const;
    PointValue shown(const QByteArray &value) const { return shownOf(m_request.point, value); }

    Session &m_session;
    const InterruptibleRun &m_run;
    const WriteRequest &m_request;
    const TypedItems &m_typed;
    WriteReport m_report;
    Values m_readBack; // of the first values; all when they were verified
    std::optional<RowFailure> m_failure;
    int m_code = Success;
};

void WriteRun::write()
{
    int first = 0;
    for (const TypedItems &portion : writePortionsOf(m_typed)) {
        if (m_run.isInterrupted() || !writePortion(portion, first))
            return;
        first += portion.count;
    }
    if (isBroadcast())
        report(QStringLiteral("%1: sent; no reply, as expected of a broadcast").arg(label(0)));
    else
        report(QStringLiteral("%1: wrote %2 of %3 %4")
                   .arg(label(0), counted(m_typed.count, "item"),
                        m_typed.isTyped ? QStringLiteral("type") : QStringLiteral("kind"),
                        m_typed.kindName()));
}

bool WriteRun::writePortion(const TypedItems &portion, int first)
{
    const Values values = slice(m_request.values, static_cast<size_t>(first), portion);
    const bool isConfirmed = m_session.write(portion.items, dataOf(values, portion));
    m_report.add(m_session.exchanges());
    if (m_run.isInterrupted() && !isConfirmed)
        return false;
    if (isConfirmed)
        reportOddSuccess(m_session, label(first));
    else if (!isExpectedSilence())
        failWrite(label(first));
    return m_code == Success;
}

bool WriteRun::isExpectedSilence() const
{
    return isBroadcast() && m_session.failure().kind == FailureKind::NoReply && m_report.hasTouched();
}

void WriteRun::failWrite(const QString &label)
{
    fail(label);
    if (m_report.hasTouched()) {
        for (const QString &line : m_report.lines())
            report(QStringLiteral("  ") + line);
    }
}

void WriteRun::fail(const QString &label)
{
    const Failure failure = m_session.failure();
    reportFailure(m_session, label);
    m_failure = RowFailure{nameOf(failure.kind), failure.text};
    m_code = exitCodeOf(failure);
}

// Whether the slave holds what was written.
void WriteRun::verify()
{
    for (const TypedItems &portion : portionsOf(m_typed)) {
        const std::optional<QByteArray> data = m_session.read(portion.items);
        if (m_run.isInterrupted())
            return;
        if (!data) {
            fail(label(static_cast<int>(m_readBack.size())));
            report(QStringLiteral("  the write was confirmed; whether the slave holds it is not verified"));
            return;
        }
        const Values values = valuesIn(*data, portion);
        m_readBack.insert(m_readBack.end(), values.begin(), values.end());
    }
    compare();
}

void WriteRun::compare()
{
    for (int i = 0; i < m_typed.count; ++i) {
        const QByteArray &wanted = m_request.values[static_cast<size_t>(i)];
        const QByteArray &read = m_readBack[static_cast<size_t>(i)];
        if (read == wanted)
            continue;
        reportError(
            QStringLiteral("%1: wrote %2, read back %3").arg(label(i), shown(wanted).text, shown(read).text));
        m_code = NotVerified;
    }
    if (m_code == Success)
        report(QStringLiteral("%1: verified").arg(label(0)));
}

void WriteRun::reportEnd() const
{
    if (!m_run.isInterrupted())
        return;
    reportError(QStringLiteral("%1: interrupted").arg(label(0)));
    for (const QString &line : m_report.lines())
        report(QStringLiteral("  ") + line);
}

std::vector<WrittenRow> WriteRun::rows() const
{
    std::vector<WrittenRow> rows;
    rows.reserve(m_request.values.size());
    for (int i = 0; i < m_typed.count; ++i)
        rows.push_back(rowOf(i));
    return rows;
}

WrittenRow WriteRun::rowOf(int value) const
{
    const auto index = static_cast<size_t>(value);
    const bool isReadBack = index < m_readBack.size();
    WrittenRow row;
    row.item.station = m_session.stationFor(m_typed.items);
    row.item.name = m_request.point.name;
    row.item.address = m_typed.label(value);
    row.item.offset = m_typed.offsetOf(value);
    row.item.kind = m_typed.kindName();
    row.item.unit = m_request.point.unit;
    row.wanted = shown(m_request.values[index]);
    row.item.value = isReadBack ? shown(m_readBack[index]) : row.wanted;
    row.isKnown = isReadBack || m_report.stateOf(value) == WriteState::Written;
    row.result = resultOf(value);
    if (!isReadBack && (m_report.stateOf(value) != WriteState::Written || !m_readBack.empty()))
        row.item.failure = m_failure;
    return row;
}

QString WriteRun::resultOf(int value) const
{
    const auto index = static_cast<size_t>(value);
    if (index < m_readBack.size())
        return m_readBack[index] == m_request.values[index] ? QStringLiteral("verified")
                                                            : QStringLiteral("different");
    switch (m_report.stateOf(value)) {
    case WriteState::Written: return QStringLiteral("written");
    case WriteState::Refused: return QStringLiteral("refused");
    case WriteState::Unconfirmed:
        return isBroadcast() ? QStringLiteral("sent") : QStringLiteral("unconfirmed");
    case WriteState::NotSent: break;
    }
    return QStringLiteral("not-sent");
}

QString WriteRun::label(int value) const
{
    return m_request.point.name.isEmpty() ? m_typed.label(value) : m_request.point.name;
}

int printRows(Session &session, const std::vector<WrittenRow> &rows, OutputFormat format, bool isInterrupted,
              int code)
{
    QStringList lines;
    if (format != OutputFormat::Text)
        lines = linesOf(rows, format);
    if (format == OutputFormat::Json)
        lines += summaryLine(session.counts(), {{QStringLiteral("interrupted"), isInterrupted}});
    return lines.isEmpty() || print(lines) ? code : OutputClosed;
}

} // namespace

int runWrites(Session &session, const std::vector<WriteRequest> &requests, bool isVerified,
              OutputFormat format)
{
    InterruptibleRun run(session);
    std::vector<WrittenRow> rows;
    int code = Success;
    for (const WriteRequest &request : requests) {
        WriteRun write(session, run, request);
        if (code == Success && !run.isInterrupted()) {
            run.setLabel(labelOf(request.point));
            write.write();
            if (isVerified && write.isGood())
                write.verify();
            write.reportEnd();
        } else {
            report(QStringLiteral("%1: not sent").arg(labelOf(request.point)));
        }
        const std::vector<WrittenRow> more = write.rows();
        rows.insert(rows.end(), more.begin(), more.end());
        code = code == Success ? write.code() : code;
    }
    return printRows(session, rows, format, run.isInterrupted(), run.endOf(code));
}

int showFrames(Session &session, const std::vector<WriteRequest> &requests, OutputFormat format)
{
    std::vector<FrameRow> frames;
    for (const WriteRequest &request : requests) {
        const TypedItems &typed = request.point.at;
        const int station = session.stationFor(typed.items);
        DryRunChannel channel(station, session.channel().deviceSetting()->deviceString);
        size_t first = 0;
        for (const TypedItems &portion : writePortionsOf(typed)) {
            const QByteArray data = dataOf(slice(request.values, first, portion), portion);
            if (!session.driver()->write(&channel, portion.items.command(), data)) {
                reportFailure(session, portion.label(0));
                return exitCodeOf(session.failure());
            }
            first += static_cast<size_t>(portion.count);
        }
        for (const QByteArray &frame : channel.requests())
            frames.push_back({station, QString::fromLatin1(frame.toHex(' ').toUpper()),
                              describeFrame(FrameRole::Request, frame)});
        report(QStringLiteral("%1: nothing is sent; the frames would be").arg(labelOf(request.point)));
        if (!typed.address.isBitArea() && typed.type.isBit())
            report(QStringLiteral("  (the other bits of the registers as they are read, here 0)"));
    }
    return print(linesOf(frames, format)) ? Success : OutputClosed;
}
