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

/// A channel that answers from a script and remembers every call in order.
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
        ErrorString
    };

    struct Call {
        Operation operation;
        /// Asked for by readData(), given to writeData(); otherwise 0.
        int length;
        /// What writeData() was given.
        QByteArray bytes;
    };

    typedef std::function<QByteArray(const QByteArray &request)> Responder;
    /// A reply in pieces: one readData() never takes from two of them.
    typedef std::vector<QByteArray> Pieces;

    ScriptedChannel();

    // What the driver's questions are answered with.
    int station;
    int retries;
    unsigned int delay;
    bool connected;
    QString errorText;
    /// The error text once close() was called, when not null.
    QString errorTextAfterClose;
    DeviceSetting setting;

    /// The reply to the next request that has none yet.
    void addReply(const QByteArray &reply);
    void addReply(const Pieces &reply);
    /// Answers the requests for which no reply was added.
    void setResponder(const Responder &answer);
    /// The \a nth call of \a operation from now on answers \a result instead: a number of bytes for
    /// readData() and writeData(), 0 or 1 for open() and isConnected().
    void fail(Operation operation, int nth, int result = 0);

    const std::vector<Call> &calls() const { return log; }
    int count(Operation operation) const;
    QList<QByteArray> requests() const;
    /// What readData() was asked for, in order.
    std::vector<int> readLengths() const;
    /// The calls that act on the channel or wait, in order, as text: "delayTime isConnected write(01 03 ..)
    /// read(5) read(2) errorString close open".
    std::string trace() const;
    /// Forgets the calls so far, not the script.
    void forgetCalls() { log.clear(); }
    /// Forgets the replies that were added, the responder and the failures.
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

private:
    struct Failure {
        int callsLeft;
        int result;
    };

    void record(Operation operation, int length = 0, const QByteArray &bytes = QByteArray()) const;
    bool isToFail(Operation operation, int &result) const;
    int takeBytes(char *buffer, int maxLength);

    // The contract's questions are const and are recorded as well.
    mutable std::vector<Call> log;
    mutable std::multimap<Operation, Failure> failures;
    mutable DeviceSetting answeredSetting;
    std::deque<Pieces> replies;
    Responder responder;
    std::deque<QByteArray> incoming;
};
