#include "apps/driverdesk/worker/write_run.h"

#include "desk/items/portions.h"
#include "desk/items/value_place.h"
#include "desk/link/dry_run_channel.h"
#include "desk/link/write_report.h"
#include "desk/wire/frame_text.h"

namespace
{

QString hexText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QString frameLine(char mark, FrameRole role, const QByteArray &frame, const QByteArray &request = {})
{
    return QStringLiteral("%1 %2  %3")
        .arg(QChar::fromLatin1(mark))
        .arg(hexText(frame), describeFrame(role, frame, request));
}

QStringList frameLines(const std::vector<Exchange> &exchanges)
{
    QStringList lines;
    for (const Exchange &exchange : exchanges) {
        lines += frameLine('>', FrameRole::Request, exchange.request);
        if (!exchange.reply.isEmpty())
            lines += frameLine('<', FrameRole::Reply, exchange.reply, exchange.request);
    }
    return lines;
}

// One write, from its first frame to the comparison.
class WriteRun
{
public:
    WriteRun(Session &session, const WriteOrder &order)
        : m_session(session), m_order(order), m_typed(order.point.at), m_report(m_typed)
    {
        m_outcome.id = order.id;
        m_outcome.isPreview = order.isPreview;
    }

    WriteOutcome preview()
    {
        DryRunChannel channel(station(), m_session.channel().deviceSetting()->deviceString);
        const bool isShown =
            m_session.driver()->write(&channel, m_typed.items.command(), dataOf({m_order.value}, m_typed));
        for (const QByteArray &frame : channel.requests())
            m_outcome.frames += frameLine('>', FrameRole::Request, frame);
        m_outcome.isGood = isShown;
        if (!isShown)
            m_outcome.text = m_session.driver()->getLastError();
        else if (!m_typed.address.isBitArea() && m_typed.type.isBit())
            m_outcome.text =
                QStringLiteral("The other bits of the register are written as they are read, here 0.");
        return m_outcome;
    }

    WriteOutcome write()
    {
        const int retries = m_session.channel().settings().retries;
        if (isBroadcast())
            m_session.channel().setRetries(0);
        const bool isWritten = m_session.write(m_typed.items, dataOf({m_order.value}, m_typed));
        m_session.channel().setRetries(retries);
        m_report.add(m_session.exchanges());
        m_outcome.frames = frameLines(m_session.exchanges());
        if (isBroadcast())
            endBroadcast(isWritten);
        else if (isWritten)
            verify();
        else
            fail(QStringLiteral("Not written"));
        return m_outcome;
    }

private:
    int station() const { return m_session.stationFor(m_typed.items); }
    bool isBroadcast() const { return station() == modbus::BroadcastStation; }

    void endBroadcast(bool isWritten)
    {
        if (!isWritten && !m_report.hasTouched())
            return fail(QStringLiteral("Not sent"));
        m_outcome.isGood = true;
        m_outcome.text = QStringLiteral("Sent to all stations; none replies, so nothing is verified.");
    }

    void verify()
    {
        const std::optional<QByteArray> data = m_session.read(m_typed.items);
        m_outcome.frames += frameLines(m_session.exchanges());
        if (!data)
            return fail(QStringLiteral("Written, and not verified"));
        const QByteArray readBack = valuesIn(*data, m_typed).front();
        const Point &point = m_order.point;
        m_outcome.isGood = readBack == m_order.value;
        m_outcome.text =
            m_outcome.isGood
                ? QStringLiteral("Written and verified: %1.").arg(shown(readBack))
                : QStringLiteral("Wrote %1, read back %2.").arg(shown(m_order.value), shown(readBack));
        if (!m_outcome.isGood)
            m_outcome.advice =
                QStringLiteral("Does the device itself set %1, or limit it?").arg(labelOf(point));
    }

    QString shown(const QByteArray &value) const
    {
        return shownOf(m_order.point, value).withUnit(m_order.point.unit);
    }

    void fail(const QString &what)
    {
        const Failure failure = m_session.failure();
        m_outcome.text = QStringLiteral("%1: %2").arg(what, failure.text);
        m_outcome.advice = failure.advice;
        if (m_report.stateOf(0) == WriteState::Unconfirmed)
            m_outcome.advice += QStringLiteral("\nIt was sent, and is perhaps written.");
    }

    Session &m_session;
    const WriteOrder &m_order;
    const TypedItems &m_typed;
    WriteReport m_report;
    WriteOutcome m_outcome;
};

} // namespace

WriteOutcome carryOut(Session &session, const WriteOrder &order)
{
    WriteRun run(session, order);
    return order.isPreview ? run.preview() : run.write();
}
