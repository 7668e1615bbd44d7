#include "apps/driverhost/runs/write_run.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/item_data.h"
#include "desk/items/number_text.h"
#include "desk/items/portions.h"
#include "desk/link/dry_run_channel.h"
#include "desk/link/write_report.h"
#include "desk/output/summary.h"
#include "desk/output/write_form.h"
#include "desk/wire/frame_text.h"

namespace
{

std::vector<quint32> slice(const std::vector<quint32> &values, size_t first, const Items &portion)
{
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + portion.count};
}

class WriteRun
{
public:
    WriteRun(Session &session, const WriteRequest &request)
        : m_session(session), m_request(request), m_run(session), m_report(request.items)
    {
        m_run.setLabel(request.items.label(0));
    }

    void write();
    void verify();
    int finish(OutputFormat format) const;

    bool isGood() const { return m_code == Success && !m_run.isInterrupted(); }

private:
    bool writePortion(const Items &portion, const std::vector<quint32> &values);
    bool isBroadcast() const { return m_session.stationFor(m_request.items) == modbus::BroadcastStation; }
    bool isExpectedSilence() const;
    void fail(const Items &portion);
    void compare();
    std::vector<WrittenRow> rows() const;
    WrittenRow rowOf(int item) const;
    QString resultOf(int item) const;

    Session &m_session;
    const WriteRequest &m_request;
    InterruptibleRun m_run;
    WriteReport m_report;
    std::vector<quint32> m_readBack; // of the first items; all when they were verified
    std::optional<RowFailure> m_failure;
    int m_code = Success;
};

void WriteRun::write()
{
    size_t first = 0;
    for (const Items &portion : writePortionsOf(m_request.items)) {
        if (m_run.isInterrupted() || !writePortion(portion, slice(m_request.values, first, portion)))
            return;
        first += static_cast<size_t>(portion.count);
    }
    const QString label = m_request.items.label(0);
    if (isBroadcast())
        report(QStringLiteral("%1: sent; no reply, as expected of a broadcast").arg(label));
    else
        report(QStringLiteral("%1: wrote %2 of kind %3")
                   .arg(label, counted(m_request.items.count, "item"), nameOf(m_request.items.kind)));
}

bool WriteRun::writePortion(const Items &portion, const std::vector<quint32> &values)
{
    const bool isConfirmed = m_session.write(portion, dataOf(values, portion.kind));
    m_report.add(m_session.exchanges());
    if (m_run.isInterrupted() && !isConfirmed)
        return false;
    if (isConfirmed)
        reportOddSuccess(m_session, portion.label(0));
    else if (!isExpectedSilence())
        fail(portion);
    return m_code == Success;
}

bool WriteRun::isExpectedSilence() const
{
    return isBroadcast() && m_session.failure().kind == FailureKind::NoReply && m_report.hasTouched();
}

void WriteRun::fail(const Items &portion)
{
    const Failure failure = m_session.failure();
    reportFailure(m_session, portion.label(0));
    if (m_report.hasTouched()) {
        for (const QString &line : m_report.lines())
            report(QStringLiteral("  ") + line);
    }
    m_failure = RowFailure{nameOf(failure.kind), failure.text};
    m_code = exitCodeOf(failure);
}

// Whether the slave holds what was written.
void WriteRun::verify()
{
    for (const Items &portion : portionsOf(m_request.items)) {
        const std::optional<QByteArray> data = m_session.read(portion);
        if (m_run.isInterrupted())
            return;
        if (!data) {
            fail(portion);
            return;
        }
        const std::vector<quint32> values = valuesIn(*data, portion);
        m_readBack.insert(m_readBack.end(), values.begin(), values.end());
    }
    compare();
}

void WriteRun::compare()
{
    for (int i = 0; i < m_request.items.count; ++i) {
        const quint32 wanted = m_request.values[static_cast<size_t>(i)];
        const quint32 read = m_readBack[static_cast<size_t>(i)];
        if (read == wanted)
            continue;
        reportError(QStringLiteral("%1: wrote %2, read back %3")
                        .arg(m_request.items.label(i),
                             formatValue(wanted, m_request.items.kind, m_request.form),
                             formatValue(read, m_request.items.kind, m_request.form)));
        m_code = NotVerified;
    }
    if (m_code == Success)
        report(QStringLiteral("%1: verified").arg(m_request.items.label(0)));
}

int WriteRun::finish(OutputFormat format) const
{
    if (m_run.isInterrupted()) {
        reportError(QStringLiteral("%1: interrupted").arg(m_request.items.label(0)));
        for (const QString &line : m_report.lines())
            report(QStringLiteral("  ") + line);
    }
    QStringList lines;
    if (format != OutputFormat::Text)
        lines = linesOf(rows(), format);
    if (format == OutputFormat::Json)
        lines += summaryLine(m_session.counts(), {{QStringLiteral("interrupted"), m_run.isInterrupted()}});
    return lines.isEmpty() || print(lines) ? m_run.endOf(m_code) : OutputClosed;
}

std::vector<WrittenRow> WriteRun::rows() const
{
    std::vector<WrittenRow> rows;
    for (int i = 0; i < m_request.items.count; ++i)
        rows.push_back(rowOf(i));
    return rows;
}

WrittenRow WriteRun::rowOf(int item) const
{
    const Items &items = m_request.items;
    const size_t index = static_cast<size_t>(item);
    const bool isReadBack = index < m_readBack.size();
    WrittenRow row;
    row.item.station = m_session.stationFor(items);
    row.item.address = items.label(item);
    row.item.offset = items.isRaw() ? -1 : items.addressOf(item).wireOffset();
    row.item.kind = items.kind;
    row.item.form = m_request.form;
    row.wanted = m_request.values[index];
    row.item.value = isReadBack ? m_readBack[index] : row.wanted;
    row.isKnown = isReadBack || m_report.stateOf(item) == WriteState::Written;
    row.result = resultOf(item);
    if (!isReadBack && (m_report.stateOf(item) != WriteState::Written || !m_readBack.empty()))
        row.item.failure = m_failure;
    return row;
}

QString WriteRun::resultOf(int item) const
{
    const size_t index = static_cast<size_t>(item);
    if (index < m_readBack.size())
        return m_readBack[index] == m_request.values[index] ? QStringLiteral("verified")
                                                            : QStringLiteral("different");
    switch (m_report.stateOf(item)) {
    case WriteState::Written: return QStringLiteral("written");
    case WriteState::Refused: return QStringLiteral("refused");
    case WriteState::Unconfirmed:
        return isBroadcast() ? QStringLiteral("sent") : QStringLiteral("unconfirmed");
    case WriteState::NotSent: break;
    }
    return QStringLiteral("not-sent");
}

} // namespace

int runWrite(Session &session, const WriteRequest &request, bool isVerified, OutputFormat format)
{
    WriteRun run(session, request);
    run.write();
    if (isVerified && run.isGood())
        run.verify();
    return run.finish(format);
}

int showFrames(Session &session, const WriteRequest &request, OutputFormat format)
{
    const int station = session.stationFor(request.items);
    DryRunChannel channel(station, session.channel().deviceSetting()->deviceString);
    size_t first = 0;
    for (const Items &portion : writePortionsOf(request.items)) {
        const QByteArray data = dataOf(slice(request.values, first, portion), portion.kind);
        if (!session.driver()->write(&channel, portion.command(), data)) {
            reportFailure(session, portion.label(0));
            return exitCodeOf(session.failure());
        }
        first += static_cast<size_t>(portion.count);
    }
    std::vector<FrameRow> frames;
    for (const QByteArray &frame : channel.requests())
        frames.push_back({station, QString::fromLatin1(frame.toHex(' ').toUpper()),
                          describeFrame(FrameRole::Request, frame)});
    report(QStringLiteral("%1: nothing is sent; the frames would be").arg(request.items.label(0)));
    if (!request.items.address.isBitArea() && isBitKind(request.items.kind))
        report(QStringLiteral("  (the other bits of the registers as they are read, here 0)"));
    return print(linesOf(frames, format)) ? Success : OutputClosed;
}
