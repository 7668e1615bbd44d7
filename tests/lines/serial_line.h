#pragma once

#include "desk/channel/line.h"
#include "tests/lines/plan_device.h"

#include <algorithm>

/// A serial line with its devices behind a gateway, on a clock of its own: frames take the time that the line
/// takes, and nobody waits for it.
class SerialLine : public Line
{
public:
    /// \a device answers for all its stations; it may change meanwhile.
    explicit SerialLine(const PlanDevice &device) : m_device(device) {}

    bool open(qint64 deadline) override;
    void close() override;
    LineState state() override { return m_isOpen ? LineState::Open : LineState::Closed; }
    int send(const char *bytes, int size, qint64 deadline) override;
    QByteArray receive(qint64 deadline) override;
    void pause(qint64 until) override { m_now = std::max(m_now, until); }
    QString errorString() const override { return {}; }
    qint64 now() const override { return m_now; }

    /// What the devices hold: the same at each time.
    static quint16 valueAt(int station, Area area, int offset);

    /// Requests and refusals since the line was made, and how long it was taken, in microseconds.
    int requests() const { return m_requests; }
    int refusals() const { return m_refusals; }
    double busy() const { return m_busy; }

private:
    QByteArray replyTo(const QByteArray &request);

    const PlanDevice &m_device;
    bool m_isOpen = false;
    qint64 m_now = 0;
    QByteArray m_reply;
    qint64 m_replyAt = 0;
    int m_requests = 0;
    int m_refusals = 0;
    double m_busy = 0;
};
