#include "kit/link/driver_link.h"

#include "kit/link/command_at_work.h"
#include "kit/process/skipped_time.h"

#include <exception>

namespace kit
{

namespace
{

// Long beside what a check takes, so that a wait too many shows.
const int Timeout = 10000;
const int ConnectTime = 5000;

} // namespace

const int DriverLink::Always;

DriverLink::DriverLink(DriverInterface &driver, Subject &subject)
    : m_driver(driver),
      m_subject(subject),
      m_station(subject.stationId()),
      m_trouble(),
      m_hasTrouble(false),
      m_troubledAttempts(Always),
      m_attempt(-1),
      m_exchange(0)
{
    m_channel.setting = subject.deviceSetting();
    m_channel.timeout = Timeout;
    m_channel.connectTime = ConnectTime;
    m_channel.setTime([]() { return SkippedTime::nanoseconds(); },
                      [](int milliseconds) { SkippedTime::skip(qint64(milliseconds) * 1000000); });
    m_channel.setResponderInPieces([this](const QByteArray &request) { return answerTo(request); });
    m_channel.setInterference([this](ScriptedChannel::Operation operation, int part, int &result) {
        return interferes(operation, part, result);
    });
    reset();
}

Outcome DriverLink::run(const Sample &sample)
{
    const ScriptedChannel::Calls &since = m_channel.calls();
    m_stray.insert(m_stray.end(), since.begin(), since.end());
    m_channel.forgetCalls();
    m_attempt = -1;
    m_channel.station = sample.station < 0 ? m_station : sample.station;
    m_subject.begin(sample);
    CommandAtWork::note(sample, m_hasTrouble ? m_trouble.name : QString());

    Outcome outcome = Outcome();
    outcome.begin = SkippedTime::nanoseconds();
    execute(sample, outcome);
    outcome.end = SkippedTime::nanoseconds();
    outcome.calls = m_channel.calls();
    m_channel.forgetCalls();
    outcome.hasError = m_driver.hasError();
    outcome.text = m_driver.getLastError();
    return outcome;
}

Outcome DriverLink::runOnOpenChannel(const Sample &sample)
{
    reset();
    return run(sample);
}

Outcome DriverLink::runWith(const Trouble &trouble, const Sample &sample, int retries, int attempts)
{
    reset();
    m_channel.retries = retries;
    setTrouble(trouble, attempts);
    Outcome outcome = run(sample);
    m_hasTrouble = false;
    return outcome;
}

void DriverLink::setTrouble(const Trouble &trouble, int attempts)
{
    m_trouble = trouble;
    m_troubledAttempts = attempts;
    m_hasTrouble = true;
}

void DriverLink::reset()
{
    m_channel.connected = true;
    m_channel.retries = 0;
    m_hasTrouble = false;
}

ScriptedChannel::Calls DriverLink::strayCalls()
{
    const ScriptedChannel::Calls &since = m_channel.calls();
    m_stray.insert(m_stray.end(), since.begin(), since.end());
    m_channel.forgetCalls();
    return m_stray;
}

void DriverLink::execute(const Sample &sample, Outcome &outcome)
{
    try {
        if (sample.isWrite)
            outcome.isWritten = m_driver.write(&m_channel, sample.command, sample.data);
        else
            outcome.data = m_driver.read(&m_channel, sample.command);
    } catch (const std::exception &exception) {
        outcome.thrown = QString::fromLocal8Bit(exception.what());
    } catch (...) {
        outcome.thrown = QLatin1String("something");
    }
}

ScriptedChannel::Pieces DriverLink::answerTo(const QByteArray &request)
{
    const QByteArray reply = m_subject.reply(request);
    if (!isTroubled())
        return {reply};
    if (m_trouble.gap > 0)
        return {reply.left(m_trouble.gap), reply.mid(m_trouble.gap)};
    return {m_trouble.reply ? m_trouble.reply(reply) : reply};
}

// An attempt begins with the question whether the channel is open, or with opening it.
void DriverLink::countRequest()
{
    const ScriptedChannel::Calls &calls = m_channel.calls();
    bool isFirst = m_attempt < 0;
    for (auto call = calls.rbegin(); call != calls.rend() && call->operation != ScriptedChannel::WriteData;
         ++call)
        isFirst = isFirst || call->operation == ScriptedChannel::IsConnected ||
                  call->operation == ScriptedChannel::Open;
    m_attempt += isFirst ? 1 : 0;
    m_exchange = isFirst ? 0 : m_exchange + 1;
}

bool DriverLink::isTroubled() const
{
    return m_hasTrouble && m_attempt >= 0 && m_exchange == m_trouble.exchange &&
           m_attempt < m_troubledAttempts;
}

bool DriverLink::interferes(ScriptedChannel::Operation operation, int part, int &result)
{
    if (operation == ScriptedChannel::WriteData)
        countRequest();
    if (!isTroubled())
        return false;
    if (operation == ScriptedChannel::WriteData && m_trouble.sent) {
        result = m_trouble.sent();
        return true;
    }
    return operation == ScriptedChannel::ReadData && m_trouble.received && m_trouble.received(part, result);
}

} // namespace kit
