#include "tests/simulation/panel/panel_run.h"

#include "desk/plan/tag_readings.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>
#include <iostream>
#include <sstream>

namespace
{

const qint64 Ms = 1000;
const qint64 Second = 1000 * Ms;
const int Stations = 5;
const qint64 ReplyTime = 8 * Ms;
// Stations are asked again after 4 s at most, and connections opened after one.
const qint64 Recovery = 8 * Second;

quint32 draw(quint32 seed, quint32 index, quint32 count)
{
    std::seed_seq sequence{seed, index};
    return static_cast<quint32>(std::mt19937(sequence)()) % count;
}

bool knowProbes(quint32 seed)
{
    return draw(seed, 1, 3) != 0;
}

LinkSettings settingsOf(quint32 seed, SettleMode mode)
{
    const int timeouts[] = {150, 300, 600};
    LinkSettings settings;
    settings.channel.timeout = timeouts[draw(seed, 2, 3)];
    settings.channel.retries = static_cast<int>(draw(seed, 3, 4));
    settings.channel.settle.mode = mode;
    return settings;
}

// Of a station that is not known to answer function 8 no reply may come later than its quiet time.
qint64 shortDelay(const LinkSettings &settings)
{
    return settings.channel.timeout * Ms * 5 / 2;
}

bool areAllKnown(const Settling &settling)
{
    int known = 0;
    for (const Settling::Station &station : settling.stations())
        known += station.habit == Settling::Answers ? 1 : 0;
    return known == Stations;
}

std::vector<Reading> readingsOfAll()
{
    QStringList tags;
    for (int station = 1; station <= Stations; ++station) {
        for (int number = 1; number <= 2 + station % 3; ++number)
            tags += QStringLiteral("%1-HR%2").arg(station).arg(number);
    }
    return tagReadingsOf(tags, WordItem, ValueForm::Unsigned).readings;
}

void addTo(quint64 &digest, quint64 value)
{
    const quint64 prime = 1099511628211u;
    digest = (digest ^ value) * prime;
}

} // namespace

PanelRun::PanelRun(const QString &plugin, quint32 seed, SettleMode mode)
    : m_settings(settingsOf(seed, mode)),
      m_panel(plugin, m_settings, seed),
      m_calendar(m_panel.time, m_panel.gateway, Stations, shortDelay(m_settings), seed),
      m_readings(readingsOfAll()),
      m_planned(m_panel.session, m_readings, m_learnt),
      m_values(m_readings.size())
{
    for (int station = 1; station <= Stations; ++station)
        m_panel.gateway.addStation(
            station, ReplyTime, knowProbes(seed) || draw(seed, 10 + static_cast<quint32>(station), 2) == 0);
    m_panel.gateway.setWatcher([this](char direction, const QByteArray &bytes) { watch(direction, bytes); });
    m_planned.setPacing(&m_pacing);
    m_planned.setClock([this] { return m_panel.time.now() / Ms; });
}

std::string PanelRun::description() const
{
    std::ostringstream text;
    text << "time-out " << m_settings.channel.timeout << " ms, " << m_settings.channel.retries << " retries";
    return text.str();
}

void PanelRun::runUntil(qint64 time)
{
    while (m_panel.time.now() < time && m_report.problem.empty()) {
        const qint64 began = m_panel.time.now();
        for (Value &value : m_values)
            value.reports = 0;
        m_planned.readRound(*this);
        checkRound(began);
        ++m_report.rounds;
        m_panel.time.runUntil((m_panel.time.now() / Second + 1) * Second);
    }
}

// The driver gives words with their low byte first.
bool PanelRun::add(size_t reading, const QByteArray &data)
{
    const Gateway &gateway = m_panel.gateway;
    const int offset = m_readings[reading].items.address.wireOffset() - gateway.lastStart();
    const QByteArray expected = gateway.lastValues().mid(2 * offset, 2);
    Value &value = m_values[reading];
    ++value.reports;
    ++m_report.values;
    value.isGiven = true;
    value.shown.add(ValueRow(), m_panel.time.now() / Ms);
    if (expected.size() != 2 || data.size() != 2 || data.at(0) != expected.at(1) ||
        data.at(1) != expected.at(0))
        noteProblem("a wrong value: " + data.toHex().toStdString() + " in place of " +
                    expected.toHex().toStdString());
    return m_report.problem.empty();
}

bool PanelRun::addFailure(const std::vector<size_t> &readings, const Failure &failure)
{
    m_report.failures += readings.size();
    miss(readings, failure);
    return m_report.problem.empty();
}

bool PanelRun::addNotAsked(const std::vector<size_t> &readings, const Failure &failure)
{
    m_report.notAsked += readings.size();
    miss(readings, failure);
    return m_report.problem.empty();
}

void PanelRun::miss(const std::vector<size_t> &readings, const Failure &failure)
{
    for (const size_t reading : readings) {
        Value &value = m_values[reading];
        ++value.reports;
        value.isGiven = false;
        value.shown.addGap();
    }
    const std::string text = failure.text.toStdString();
    if (!m_calendar.isFair() && !m_calendar.hasHappened())
        noteProblem("\"" + text + "\" before anything went wrong");
    if (m_calendar.isFair() && m_calendar.fairSince() + Recovery < m_panel.time.now())
        noteProblem("\"" + text + "\" long after the last fault");
}

void PanelRun::checkRound(qint64 began)
{
    const qint64 now = m_panel.time.now();
    bool isComplete = true;
    for (const Value &value : m_values) {
        isComplete = isComplete && value.isGiven;
        if (value.reports != 1 && m_report.problem.empty())
            noteProblem("a reading was not reported once");
        if (value.shown.isLive(now / Ms) && !value.isGiven)
            noteProblem("an old value is shown as live");
    }
    if (!m_calendar.isFair())
        m_isComplete = false;
    if (isComplete && !m_isComplete && m_calendar.isFair() && began >= m_calendar.fairSince()) {
        m_isComplete = true;
        m_report.longestRecovery = std::max(m_report.longestRecovery, now - m_calendar.fairSince());
    }
    if (areAllKnown(m_panel.session.channel().settling()))
        m_calendar.setLongestDelay(20 * Ms * m_settings.channel.timeout);
    m_report.mostPending = std::max(m_report.mostPending, m_panel.time.pending());
    if (m_panel.time.pending() > 1000)
        noteProblem("more and more is on its way");
}

void PanelRun::watch(char direction, const QByteArray &bytes)
{
    addTo(m_report.digest, static_cast<quint64>(m_panel.time.now()));
    addTo(m_report.digest, static_cast<quint64>(direction));
    for (const char byte : bytes)
        addTo(m_report.digest, static_cast<unsigned char>(byte));
    if (m_traceFrom >= 0 && m_panel.time.now() >= m_traceFrom)
        std::cout << static_cast<double>(m_panel.time.now()) / 1e6 << ' ' << direction << ' '
                  << bytes.toHex(' ').constData() << (m_calendar.isFair() ? "" : " in " + m_calendar.name())
                  << '\n';
}

void PanelRun::noteProblem(const std::string &what)
{
    if (!m_report.problem.empty())
        return;
    std::ostringstream text;
    text << "after " << static_cast<double>(m_panel.time.now()) / 1e6 << " s, "
         << (m_calendar.isFair() ? "after " : "in ") << "the episode \"" << m_calendar.name()
         << "\": " << what;
    m_report.problem = text.str();
}
