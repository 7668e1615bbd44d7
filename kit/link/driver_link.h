#pragma once

#include "kit/link/outcome.h"
#include "kit/link/trouble.h"
#include "kit/subject/subject.h"

#include "host/driver_interface.h"

namespace kit
{

/// A driver on a scripted channel to the subject's slave: what a host does for one link. Needs a SkippedTime
/// for its waits.
class DriverLink
{
public:
    /// The channel is open, without retries and without delay.
    DriverLink(DriverInterface &driver, Subject &subject);
    DriverLink(const DriverLink &) = delete;
    DriverLink &operator=(const DriverLink &) = delete;

    DriverInterface &driver() { return m_driver; }
    ScriptedChannel &channel() { return m_channel; }

    /// Sends a command; an open channel is as before, a closed one closed.
    Outcome run(const Sample &sample);
    /// The same on a channel that is open, without retries.
    Outcome runOnOpenChannel(const Sample &sample);
    /// The same with \a trouble in the first \a attempts attempts.
    Outcome runWith(const Trouble &trouble, const Sample &sample, int retries = 0, int attempts = Always);
    static const int Always = 1 << 30;

    /// Back to an open channel without retries and troubles.
    void reset();
    /// Troubles the first \a attempts attempts of each command from now on.
    void setTrouble(const Trouble &trouble, int attempts = Always);
    /// The station, for samples that name none; at first the subject's.
    void setStation(int station) { m_station = station; }
    /// The delay before attempts, which reset() keeps.
    void setDelay(unsigned int milliseconds) { m_channel.delay = milliseconds; }

    /// Calls that came when no command was under way.
    ScriptedChannel::Calls strayCalls();

private:
    ScriptedChannel::Pieces answerTo(const QByteArray &request);
    void countRequest();
    bool isTroubled() const;
    bool interferes(ScriptedChannel::Operation operation, int part, int &result);
    void execute(const Sample &sample, Outcome &outcome);

    DriverInterface &m_driver;
    Subject &m_subject;
    ScriptedChannel m_channel;
    int m_station;
    Trouble m_trouble;
    bool m_hasTrouble;
    int m_troubledAttempts;
    int m_attempt;  // the present one, counted from 0
    int m_exchange; // the present one of the attempt, counted from 0
    ScriptedChannel::Calls m_stray;
};

} // namespace kit
