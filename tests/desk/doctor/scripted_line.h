#pragma once

#include "desk/doctor/observing/examiner.h"
#include "tests/simulation/simulated_line.h"

/// An examiner on a simulated line, whose other side does what a test says. Times are microseconds.
class ScriptedLine : private LinePeer
{
public:
    static constexpr qint64 Millisecond = 1000;
    static constexpr qint64 Second = 1000 * Millisecond;

    VirtualTime time;
    SimulatedLine line{time, *this};
    DoctorOptions options;
    Observations seen;
    Examiner examiner{line, options, seen};
    /// Whether the connection with this number, from 1 on, is taken.
    std::function<bool(int number)> takes = [](int /*number*/) { return true; };
    /// What is answered; by default nothing.
    std::function<void(const QByteArray &request)> answers = [](const QByteArray & /*request*/) {};
    std::vector<QByteArray> requests;

    ScriptedLine()
    {
        line.setCancelled([this] { return m_isCancelled; });
    }

    /// Bytes that come so much later, all at once.
    void deliver(qint64 delay, const QByteArray &bytes)
    {
        time.after(delay, [this, bytes] { line.deliver(bytes); });
    }
    void end(qint64 delay)
    {
        time.after(delay, [this] { line.end(LineState::ClosedByOther); });
    }
    void cancel() { m_isCancelled = true; }
    Asked ask(const QByteArray &request, qint64 wait = Second, qint64 pause = 0)
    {
        return examiner.ask(Purpose::Sample, request, wait, pause);
    }

private:
    bool accept(SimulatedLine & /*line*/) override { return takes(++m_connections); }
    void closed(SimulatedLine & /*line*/) override {}
    void receive(SimulatedLine & /*line*/, const QByteArray &bytes) override
    {
        requests.push_back(bytes);
        answers(bytes);
    }

    int m_connections = 0;
    bool m_isCancelled = false;
};
