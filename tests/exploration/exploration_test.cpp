#include "desk/channel/line_channel.h"
#include "drivers/device_setting.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "tests/doubles/command.h"
#include "tests/doubles/project_database.h"
#include "tests/exploration/adversary_line.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

// All that an adversary can do to the driver on its channel: every reply lost, or late by as much as it
// wants, over new connections. No value may be wrong, and no write confirmed that the slave has not
// confirmed.

namespace
{

const int Timeout = 100; // milliseconds
const qint64 Ms = 1000;
const qint64 NoLimit = -1;
const qint64 BelowQuietTime = 3 * Ms * Timeout - 1;

// Six requests and six probes, unless EXPLORATION_DEPTH says otherwise.
int maxEffort()
{
    static const int given = qgetenv("EXPLORATION_DEPTH").toInt();
    return given > 0 ? given : 6;
}

struct Plan {
    const char *name;
    ProbeHabit habit;
    qint64 longestDelay;
    SettleMode mode;
    int quietTime;     // 0: the default
    bool isKnown;      // a station that has answered function 8 before
    bool hasOneNumber; // all probes carry the same one
    int retries;
};

struct Findings {
    // The commands that led to one; empty for none.
    std::string wrongValue;
    std::string wrongConfirmation;
    std::size_t states = 0;
    quint64 runs = 0;
    quint64 values = 0;
    quint64 failures = 0;
    quint64 echoes = 0;
    quint64 quiets = 0;

    bool areBothWrong() const { return !wrongValue.empty() && !wrongConfirmation.empty(); }
};

ExchangeSettings settingsOf(const Plan &plan)
{
    ExchangeSettings settings;
    settings.timeout = Timeout;
    settings.retries = plan.retries;
    settings.settle.mode = plan.mode;
    settings.settle.quietTime = plan.quietTime;
    return settings;
}

// The driver and its channel, from the beginning of a run, which ends where another has been.
class World
{
public:
    World(const Plan &plan, Chooser &chooser, KnownStates &states, DriverInterface &driver)
        : m_plan(plan),
          m_chooser(chooser),
          m_states(states),
          m_driver(driver),
          m_device(DefaultDeviceType, QString::fromLatin1("ETHERNET"), 9600, 8, 0, 2),
          m_line(chooser, plan.habit, plan.longestDelay),
          m_channel(m_line, &m_device, settingsOf(plan))
    {
        m_line.setWatcher([this](qint64 timeLeft) { watch(timeLeft); });
        m_channel.setObserver([this](ChannelEvent event, const QByteArray &) { noteEvent(event); });
        Settling &settling = m_channel.settling();
        if (plan.hasOneNumber)
            settling.setNumberSource([] { return quint16(1); });
        if (!plan.isKnown)
            return;
        settling.noteReply(1);
        settling.noteLoss(1, 0);
        settling.noteFrame(settling.probe(1, 0), 0);
    }

    bool isOver() const
    {
        const Effort effort = m_line.effort();
        return effort.requests >= maxEffort() || effort.probes >= maxEffort() || m_chooser.isPruned();
    }
    // One command.
    void step(Findings &findings)
    {
        const int choice = m_chooser.choose(choices(), m_line.rank());
        const int kind = choice % Kinds;
        if (choice >= Kinds)
            m_line.passIdle(150 * Ms);
        m_done = std::string(1, static_cast<char>('0' + kind));
        const SettleCounts before = m_channel.settling().counts();
        const bool isWrong = kind == Write ? !write() : !read(1 + kind);
        note(kind, findings, before);
        if (isWrong && !m_chooser.isPruned())
            (kind == Write ? findings.wrongConfirmation : findings.wrongValue) = m_log.str();
        if (m_chooser.isPruned() || m_chooser.isRepeating())
            return;
        endWhereKnown(state());
        if (!isOver())
            m_chooser.postpone(choices(), m_line.rank());
    }

private:
    // Two reads and a write, each at once or after a while in which nobody asks.
    enum Kind { ReadOne, ReadTwo, Write, Kinds };
    int choices() const { return m_plan.longestDelay < 0 ? Kinds : 2 * Kinds; }
    // Everything that what comes next depends on.
    std::string state()
    {
        const Settling::Station known = m_channel.settling().stations().value(1);
        std::ostringstream text;
        text << "habit " << known.habit << known.hasAnswered << known.isSettled << known.isIgnoring
             << known.ignored << " probes " << known.probes.size() << ' '
             << (m_line.state() == LineState::Open);
        if (m_plan.longestDelay >= 0 && !known.isSettled)
            text << " quiet " << m_line.now() - known.quietSince << " probed "
                 << (known.probes.isEmpty() ? 0 : m_line.now() - known.probedAt);
        text << m_line.flightText(known.probes);
        return text.str();
    }
    // In the middle of a command.
    void watch(qint64 timeLeft)
    {
        std::ostringstream text;
        text << state() << " in " << m_done << ' ' << timeLeft << ' ' << m_line.exchangeText();
        endWhereKnown(text.str());
    }
    void endWhereKnown(const std::string &state)
    {
        if (!m_chooser.isRepeating() && !m_chooser.isPruned() && !m_states.add(state, m_line.effort()))
            m_chooser.prune();
    }
    // How far the command has got; what is thrown away is not part of that.
    void noteEvent(ChannelEvent event)
    {
        if (event != ChannelEvent::Discarded)
            m_done += static_cast<char>('a' + static_cast<int>(event));
    }
    void note(int kind, Findings &findings, const SettleCounts &before)
    {
        static const char *const names[] = {"read 1", "read 2", "write"};
        const SettleCounts after = m_channel.settling().counts();
        findings.echoes += after.byEcho - before.byEcho;
        findings.quiets += after.byQuiet - before.byQuiet;
        ++(m_driver.hasError() ? findings.failures : findings.values);
        const QString error = m_driver.getLastError().section(QLatin1Char('('), 0, 0);
        m_log << names[kind] << ": " << (m_driver.hasError() ? error.toStdString() : "done")
              << "; still to come:" << m_line.flightText(m_channel.settling().stations().value(1).probes)
              << '\n';
    }
    // False for a wrong value: the register holds the number of the request.
    bool read(int count)
    {
        const QByteArray data =
            m_driver.read(&m_channel, makeCommand(WordItem, QString::fromLatin1("HR1"), count));
        return m_driver.hasError() || data.at(0) == static_cast<char>(m_line.effort().requests);
    }
    // False for a write that is confirmed and was not.
    bool write()
    {
        const QByteArray data(2, static_cast<char>(m_line.effort().requests + 1));
        const bool isWritten =
            m_driver.write(&m_channel, makeCommand(WordItem, QString::fromLatin1("FN6HR1"), 1), data);
        return !isWritten || m_line.hasReplied();
    }

    const Plan &m_plan;
    Chooser &m_chooser;
    KnownStates &m_states;
    DriverInterface &m_driver;
    DeviceSetting m_device;
    AdversaryLine m_line;
    LineChannel m_channel;
    std::string m_done;
    std::ostringstream m_log;
};

Findings explore(const Plan &plan)
{
    const ProjectDatabase project(QStringList(), 1);
    DriverModbusRtuSlaveOverTcp driver;
    Findings findings;
    KnownStates states;
    Chooser chooser;
    while (!findings.areBothWrong() && chooser.startNext()) {
        World world(plan, chooser, states, driver);
        while (!world.isOver())
            world.step(findings);
        ++findings.runs;
    }
    findings.states = states.size();
    std::cout << plan.name << ": " << findings.states << " states, " << findings.runs << " runs, "
              << findings.values << " commands done, " << findings.failures << " failed, settled "
              << findings.echoes << " times by echo and " << findings.quiets << " by quiet\n";
    return findings;
}

const Plan KnownStation = {
    "answers function 8", ProbeHabit::Answers, NoLimit, SettleMode::Auto, 0, true, false, 0};

Findings exploreLike(Plan plan, void (*change)(Plan &))
{
    change(plan);
    return explore(plan);
}

void expectNothingWrong(const Findings &findings)
{
    EXPECT_EQ("", findings.wrongValue);
    EXPECT_EQ("", findings.wrongConfirmation);
}

void expectBothWrong(const Findings &findings)
{
    EXPECT_NE("", findings.wrongValue);
    EXPECT_NE("", findings.wrongConfirmation);
    std::cout << "A wrong value after\n"
              << findings.wrongValue << "A write that was not confirmed after\n"
              << findings.wrongConfirmation;
}

} // namespace

TEST(Exploration, OfAStationThatAnswersFunction8)
{
    const Findings findings = explore(KnownStation);
    expectNothingWrong(findings);
    EXPECT_GT(findings.echoes, 0u);
    EXPECT_EQ(findings.quiets, 0u);
}

TEST(Exploration, WithRetries)
{
    const Findings findings = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "with a retry";
        plan.retries = 1;
    });
    expectNothingWrong(findings);
}

TEST(Exploration, OfAStationOfWhichNothingIsKnown)
{
    const Findings byEcho = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "settled by echo alone";
        plan.mode = SettleMode::Echo;
        plan.isKnown = false;
    });
    expectNothingWrong(byEcho);
    const Findings byBoth = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "not known";
        plan.isKnown = false;
        plan.longestDelay = BelowQuietTime;
    });
    expectNothingWrong(byBoth);
}

TEST(Exploration, OfStationsThatRefuseOrIgnoreFunction8)
{
    const Findings refusing = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "refuses function 8";
        plan.habit = ProbeHabit::Refuses;
        plan.isKnown = false;
        plan.longestDelay = BelowQuietTime;
    });
    expectNothingWrong(refusing);
    EXPECT_GT(refusing.quiets, 0u);
    const Findings ignoring = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "ignores function 8";
        plan.habit = ProbeHabit::Ignores;
        plan.isKnown = false;
        plan.longestDelay = BelowQuietTime;
    });
    expectNothingWrong(ignoring);
    EXPECT_GT(ignoring.quiets, 0u);
}

// The exploration is worth as much as what it finds where something is to be found.
TEST(Exploration, FindsTheWrongValueWithoutSettling)
{
    const Findings findings = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "without settling";
        plan.mode = SettleMode::Off;
    });
    expectBothWrong(findings);
}

TEST(Exploration, FindsTheWrongValueWhenANumberIsUsedTwice)
{
    const Findings findings = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "one number for all probes";
        plan.hasOneNumber = true;
    });
    expectBothWrong(findings);
}

TEST(Exploration, FindsTheWrongValueWhenTheQuietTimeIsTooShort)
{
    const Findings findings = exploreLike(KnownStation, [](Plan &plan) {
        plan.name = "a quiet time that is too short";
        plan.mode = SettleMode::Quiet;
        plan.quietTime = Timeout;
        plan.habit = ProbeHabit::Ignores;
        plan.isKnown = false;
        plan.longestDelay = BelowQuietTime;
    });
    expectBothWrong(findings);
}
