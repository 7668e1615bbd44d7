#include "tests/doubles/scripted_channel.h"

#include "tests/doubles/frames.h"

#include <algorithm>
#include <cstring>

namespace
{

std::string textOf(const ScriptedChannel::Call &call)
{
    switch (call.operation) {
    case ScriptedChannel::ReadData: return "read(" + std::to_string(call.length) + ")";
    case ScriptedChannel::WriteData: return "write(" + toHex(call.bytes) + ")";
    case ScriptedChannel::Open: return "open";
    case ScriptedChannel::Close: return "close";
    case ScriptedChannel::IsConnected: return "isConnected";
    case ScriptedChannel::DelayTime: return "delayTime";
    case ScriptedChannel::ErrorString: return "errorString";
    default: return std::string();
    }
}

} // namespace

ScriptedChannel::ScriptedChannel()
    : station(1), retries(0), delay(0), connected(true), errorText(QLatin1String("channel error"))
{
    setting.deviceString = QLatin1String("ETHERNET");
}

void ScriptedChannel::addReply(const QByteArray &reply)
{
    addReply(Pieces(1, reply));
}

void ScriptedChannel::addReply(const Pieces &reply)
{
    replies.push_back(reply);
}

void ScriptedChannel::setResponder(const Responder &answer)
{
    responder = answer;
}

void ScriptedChannel::fail(Operation operation, int nth, int result)
{
    const Failure failure = {nth, result};
    failures.insert(std::make_pair(operation, failure));
}

void ScriptedChannel::forgetScript()
{
    replies.clear();
    responder = Responder();
    failures.clear();
}

int ScriptedChannel::count(Operation operation) const
{
    return static_cast<int>(std::count_if(
        log.begin(), log.end(), [operation](const Call &call) { return call.operation == operation; }));
}

QList<QByteArray> ScriptedChannel::requests() const
{
    QList<QByteArray> sent;
    for (const Call &call : log)
        if (call.operation == WriteData)
            sent.append(call.bytes);
    return sent;
}

std::vector<int> ScriptedChannel::readLengths() const
{
    std::vector<int> lengths;
    for (const Call &call : log)
        if (call.operation == ReadData)
            lengths.push_back(call.length);
    return lengths;
}

std::string ScriptedChannel::trace() const
{
    std::string text;
    for (const Call &call : log) {
        const std::string step = textOf(call);
        if (!step.empty())
            text += (text.empty() ? "" : " ") + step;
    }
    return text;
}

int ScriptedChannel::readData(char *buffer, int maxLength)
{
    record(ReadData, maxLength);
    int claimed = 0;
    if (!isToFail(ReadData, claimed))
        return takeBytes(buffer, maxLength);
    takeBytes(buffer, std::min(claimed, maxLength));
    return claimed;
}

int ScriptedChannel::writeData(const char *data, int length)
{
    const QByteArray request(data, length);
    record(WriteData, length, request);
    int sent = connected ? length : 0;
    isToFail(WriteData, sent);
    if (sent != length)
        return sent;
    incoming.clear();
    if (!replies.empty()) {
        incoming.assign(replies.front().begin(), replies.front().end());
        replies.pop_front();
    } else if (responder) {
        incoming.push_back(responder(request));
    }
    return sent;
}

bool ScriptedChannel::open()
{
    record(Open);
    int result = 1;
    isToFail(Open, result);
    connected = result != 0;
    return connected;
}

void ScriptedChannel::close()
{
    record(Close);
    connected = false;
    incoming.clear();
    if (!errorTextAfterClose.isNull())
        errorText = errorTextAfterClose;
}

DeviceSetting *ScriptedChannel::deviceSetting() const
{
    record(GetDeviceSetting);
    answeredSetting = setting;
    return &answeredSetting;
}

bool ScriptedChannel::isConnected() const
{
    record(IsConnected);
    int result = connected ? 1 : 0;
    isToFail(IsConnected, result);
    return result != 0;
}

int ScriptedChannel::retryCount() const
{
    record(RetryCount);
    return retries;
}

int ScriptedChannel::stationId() const
{
    record(StationId);
    return station;
}

unsigned int ScriptedChannel::delayTime() const
{
    record(DelayTime);
    return delay;
}

QString ScriptedChannel::errorString() const
{
    record(ErrorString);
    return errorText;
}

void ScriptedChannel::record(Operation operation, int length, const QByteArray &bytes) const
{
    const Call call = {operation, length, bytes};
    log.push_back(call);
}

// Whether this is a call that was to fail; its result is then what was said.
bool ScriptedChannel::isToFail(Operation operation, int &result) const
{
    bool isHit = false;
    const auto range = failures.equal_range(operation);
    for (auto failure = range.first; failure != range.second; ++failure)
        if (--failure->second.callsLeft == 0) {
            result = failure->second.result;
            isHit = true;
        }
    return isHit;
}

int ScriptedChannel::takeBytes(char *buffer, int maxLength)
{
    if (incoming.empty() || maxLength <= 0)
        return 0;
    QByteArray &piece = incoming.front();
    const int size = std::min(maxLength, static_cast<int>(piece.size()));
    std::memcpy(buffer, piece.constData(), static_cast<size_t>(size));
    piece.remove(0, size);
    if (piece.isEmpty())
        incoming.pop_front();
    return size;
}
