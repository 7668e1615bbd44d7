#pragma once

#include "drivers/device_setting.h"
#include "host/abstract_device_interface.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kit
{

/// A channel that answers from a script, fails where it is told to, and remembers every call in order.
///
/// It keeps what docs promise of a host's channel: a read waits for exactly the bytes that it asks for, a
/// write throws away what came unasked, a closed channel neither sends nor receives.
class ScriptedChannel : public AbstractDeviceInterface
{
public:
    enum Operation {
        ReadData,
        WriteData,
        Open,
        Close,
        GetDeviceSetting,
        IsConnected,
        RetryCount,
        StationId,
        DelayTime,
        ErrorString,
        /// One of the operations that no driver calls; Call::length is its place.
        Idle
    };

    struct Call {
        Operation operation;
        /// Asked for by readData(), given to writeData(); otherwise 0.
        int length;
        /// What writeData() was given, and what readData() placed.
        QByteArray bytes;
        /// What was answered: a number of bytes, or whether.
        int result;
        /// When it began and ended, on the channel's clock; 0 without one.
        qint64 begin;
        qint64 end;
    };
    using Calls = std::vector<Call>;

    /// A reply in pieces: one readData() never takes from two of them, as if the time-out passed between.
    using Pieces = std::vector<QByteArray>;
    using Responder = std::function<QByteArray(const QByteArray &request)>;
    using PieceResponder = std::function<Pieces(const QByteArray &request)>;
    /// Looks at a readData(), writeData() or open() before it is recorded, \a part reads after the last
    /// request. Returns whether \a result is the answer instead. A read places the bytes that there are,
    /// whatever the answer.
    using Interference = std::function<bool(Operation operation, int part, int &result)>;
    using Clock = std::function<qint64()>;
    using Wait = std::function<void(int milliseconds)>;

    ScriptedChannel();

    // What the driver's questions are answered with.
    int station;
    int retries;
    unsigned int delay;
    bool connected;
    QString errorText;
    /// The error text once close() was called, until open() succeeds, when not null.
    QString errorTextAfterClose;
    DeviceSetting setting;
    /// How long a read waits for bytes that do not come, and an open for its connection; see setWait().
    int timeout;
    int connectTime;

    /// The reply to the next request that has none yet.
    void addReply(const QByteArray &reply);
    void addReply(const Pieces &reply);
    /// Answers the requests for which no reply was added.
    /// @{
    void setResponder(const Responder &answer);
    void setResponderInPieces(const PieceResponder &answer) { m_responder = answer; }
    /// @}
    /// The \a nth call of \a operation from now on answers \a result instead: a number of bytes for
    /// readData() and writeData(), 0 or 1 for open() and isConnected(). A read places so many bytes, as far
    /// as it has them.
    void fail(Operation operation, int nth, int result = 0);
    void forgetFailures() { m_failures.clear(); }
    void setInterference(const Interference &interference) { m_interference = interference; }
    /// Without them no time passes.
    void setTime(const Clock &clock, const Wait &wait);

    const Calls &calls() const { return m_calls; }
    int count(Operation operation) const;
    QList<QByteArray> requests() const;
    /// What readData() was asked for, in order.
    std::vector<int> readLengths() const;
    /// The calls that act on the channel or wait, in order, as text: "delayTime isConnected write(01 03 ..)
    /// read(5) read(2) errorString close open".
    std::string trace() const;
    /// Forgets the calls so far, not the script.
    void forgetCalls();
    /// Forgets the replies that were added, the responder, the failures and the interference.
    void forgetScript();

    int readData(char *buffer, int maxLength) override;
    int writeData(const char *data, int length) override;
    bool open() override;
    void close() override;
    DeviceSetting *deviceSetting() const override;
    bool isConnected() const override;
    int retryCount() const override;
    int stationId() const override;
    unsigned int delayTime() const override;
    QString errorString() const override;

    void slot3() override { idle(3); }
    void slot7() override { idle(7); }
    void slot9() override { idle(9); }
    void slot10() override { idle(10); }
    void slot11() override { idle(11); }
    void slot12() override { idle(12); }
    void slot13() override { idle(13); }
    void slot14() override { idle(14); }
    void slot15() override { idle(15); }
    void slot17() override { idle(17); }
    void slot18() override { idle(18); }
    void slot21() override { idle(21); }
    void slot23() override { idle(23); }
    void slot24() override { idle(24); }

private:
    struct Failure {
        int callsLeft;
        int result;
    };

    void record(Operation operation, int length, const QByteArray &bytes, int result, qint64 begin) const;
    bool isToFail(Operation operation, int &result) const;
    bool interferes(Operation operation, int &result) const;
    void receive(const Pieces &pieces);
    QByteArray takenBytes(int maxLength);
    void idle(int place);
    qint64 now() const { return m_clock ? m_clock() : 0; }
    void wait(int milliseconds) const;

    // The contract's questions are const and are recorded as well.
    mutable Calls m_calls;
    mutable std::multimap<Operation, Failure> m_failures;
    mutable DeviceSetting m_answeredSetting;
    std::deque<Pieces> m_replies;
    PieceResponder m_responder;
    Interference m_interference;
    Clock m_clock;
    Wait m_wait;
    std::deque<QByteArray> m_incoming;
    QString m_errorTextBeforeClose;
    int m_part; // reads since the last request
};

/// The calls as ScriptedChannel::trace() shows them.
std::string traceOf(const ScriptedChannel::Calls &calls);

} // namespace kit
