#include "kit/link/scripted_channel.h"

#include "drivers/qt/qt_lines.h"

#include <algorithm>
#include <cstring>

namespace kit
{

namespace
{

std::string blankedHex(const QByteArray &bytes)
{
    const QByteArray digits = bytes.toHex();
    std::string text;
    for (int i = 0; i < digits.size(); i += 2)
        text += (i == 0 ? "" : " ") + std::string(digits.constData() + i, 2);
    return text;
}

std::string textOf(const ScriptedChannel::Call &call)
{
    switch (call.operation) {
    case ScriptedChannel::ReadData: return "read(" + std::to_string(call.length) + ")";
    case ScriptedChannel::WriteData: return "write(" + blankedHex(call.bytes) + ")";
    case ScriptedChannel::Open: return "open";
    case ScriptedChannel::Close: return "close";
    case ScriptedChannel::IsConnected: return "isConnected";
    case ScriptedChannel::DelayTime: return "delayTime";
    case ScriptedChannel::ErrorString: return "errorString";
    case ScriptedChannel::Idle: return "slot" + std::to_string(call.length);
    default: return std::string();
    }
}

} // namespace

std::string traceOf(const ScriptedChannel::Calls &calls)
{
    std::string text;
    for (const ScriptedChannel::Call &call : calls) {
        const std::string step = textOf(call);
        if (!step.empty())
            text += (text.empty() ? "" : " ") + step;
    }
    return text;
}

ScriptedChannel::ScriptedChannel()
    : station(1),
      retries(0),
      delay(0),
      connected(true),
      errorText(QLatin1String("channel error")),
      timeout(0),
      connectTime(0),
      m_part(0)
{
    setting.deviceString = QLatin1String("ETHERNET");
}

void ScriptedChannel::addReply(const QByteArray &reply)
{
    addReply(Pieces(1, reply));
}

void ScriptedChannel::addReply(const Pieces &reply)
{
    m_replies.push_back(reply);
}

void ScriptedChannel::setResponder(const Responder &answer)
{
    m_responder = [answer](const QByteArray &request) { return Pieces(1, answer(request)); };
}

void ScriptedChannel::fail(Operation operation, int nth, int result)
{
    const Failure failure = {nth, result};
    m_failures.insert(std::make_pair(operation, failure));
}

void ScriptedChannel::setTime(const Clock &clock, const Wait &wait)
{
    m_clock = clock;
    m_wait = wait;
}

void ScriptedChannel::forgetCalls()
{
    m_calls.clear();
    m_part = 0;
}

void ScriptedChannel::forgetScript()
{
    m_replies.clear();
    m_responder = PieceResponder();
    m_interference = Interference();
    m_failures.clear();
}

int ScriptedChannel::count(Operation operation) const
{
    return static_cast<int>(std::count_if(m_calls.begin(), m_calls.end(), [operation](const Call &call) {
        return call.operation == operation;
    }));
}

QList<QByteArray> ScriptedChannel::requests() const
{
    QList<QByteArray> sent;
    for (const Call &call : m_calls)
        if (call.operation == WriteData)
            sent.append(call.bytes);
    return sent;
}

std::vector<int> ScriptedChannel::readLengths() const
{
    std::vector<int> lengths;
    for (const Call &call : m_calls)
        if (call.operation == ReadData)
            lengths.push_back(call.length);
    return lengths;
}

std::string ScriptedChannel::trace() const
{
    return traceOf(m_calls);
}

int ScriptedChannel::readData(char *buffer, int maxLength)
{
    const qint64 begin = now();
    int result = 0;
    const bool isFailing = isToFail(ReadData, result);
    const QByteArray taken = takenBytes(isFailing ? std::min(result, maxLength) : maxLength);
    std::memcpy(buffer, taken.constData(), static_cast<size_t>(taken.size()));
    if (!isFailing)
        result = sizeOf(taken);
    interferes(ReadData, result);
    ++m_part;
    if (taken.size() < maxLength)
        wait(timeout);
    record(ReadData, maxLength, taken, result, begin);
    return result;
}

int ScriptedChannel::writeData(const char *data, int length)
{
    const qint64 begin = now();
    const QByteArray request(data, length);
    int sent = connected ? length : 0;
    isToFail(WriteData, sent);
    interferes(WriteData, sent);
    m_part = 0;
    record(WriteData, length, request, sent, begin);
    if (sent != length)
        return sent;
    m_incoming.clear();
    if (!m_replies.empty()) {
        receive(m_replies.front());
        m_replies.pop_front();
    } else if (m_responder) {
        receive(m_responder(request));
    }
    return sent;
}

void ScriptedChannel::receive(const Pieces &pieces)
{
    m_incoming.assign(pieces.begin(), pieces.end());
}

bool ScriptedChannel::open()
{
    const qint64 begin = now();
    int result = 1;
    isToFail(Open, result);
    interferes(Open, result);
    connected = result != 0;
    if (connected && !m_errorTextBeforeClose.isNull())
        errorText = m_errorTextBeforeClose;
    wait(connectTime);
    record(Open, 0, QByteArray(), result, begin);
    return connected;
}

void ScriptedChannel::close()
{
    record(Close, 0, QByteArray(), 0, now());
    connected = false;
    m_incoming.clear();
    if (errorTextAfterClose.isNull() || errorText == errorTextAfterClose)
        return;
    m_errorTextBeforeClose = errorText;
    errorText = errorTextAfterClose;
}

DeviceSetting *ScriptedChannel::deviceSetting() const
{
    record(GetDeviceSetting, 0, QByteArray(), 0, now());
    m_answeredSetting = setting;
    return &m_answeredSetting;
}

bool ScriptedChannel::isConnected() const
{
    int result = connected ? 1 : 0;
    isToFail(IsConnected, result);
    record(IsConnected, 0, QByteArray(), result, now());
    return result != 0;
}

int ScriptedChannel::retryCount() const
{
    record(RetryCount, 0, QByteArray(), retries, now());
    return retries;
}

int ScriptedChannel::stationId() const
{
    record(StationId, 0, QByteArray(), station, now());
    return station;
}

unsigned int ScriptedChannel::delayTime() const
{
    record(DelayTime, 0, QByteArray(), 0, now());
    return delay;
}

QString ScriptedChannel::errorString() const
{
    record(ErrorString, 0, QByteArray(), 0, now());
    return errorText;
}

void ScriptedChannel::record(Operation operation, int length, const QByteArray &bytes, int result,
                             qint64 begin) const
{
    const Call call = {operation, length, bytes, result, begin, now()};
    m_calls.push_back(call);
}

// Whether this is a call that was to fail; its result is then what was said.
bool ScriptedChannel::isToFail(Operation operation, int &result) const
{
    bool isHit = false;
    const auto range = m_failures.equal_range(operation);
    for (auto failure = range.first; failure != range.second; ++failure)
        if (--failure->second.callsLeft == 0) {
            result = failure->second.result;
            isHit = true;
        }
    return isHit;
}

bool ScriptedChannel::interferes(Operation operation, int &result) const
{
    return m_interference && m_interference(operation, m_part, result);
}

QByteArray ScriptedChannel::takenBytes(int maxLength)
{
    if (m_incoming.empty() || maxLength <= 0)
        return QByteArray();
    QByteArray &piece = m_incoming.front();
    QByteArray taken = piece.left(maxLength);
    piece.remove(0, taken.size());
    if (piece.isEmpty())
        m_incoming.pop_front();
    return taken;
}

void ScriptedChannel::idle(int place)
{
    record(Idle, place, QByteArray(), 0, now());
}

void ScriptedChannel::wait(int milliseconds) const
{
    if (m_wait)
        m_wait(milliseconds);
}

} // namespace kit
