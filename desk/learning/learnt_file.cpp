#include "desk/learning/learnt_file.h"

#include "desk/items/number_text.h"
#include "desk/written_file.h"

#include <QDateTime>
#include <QFile>
#include <QStringList>

// A file of what was learnt is a text of lines, a fact each, that people can read, and delete where it is
// wrong:
//
//     driverhost learnt
//     format 1
//     station 5 no-fill
//     station 5 registers cost 52916.7 2291.7
//     station 5 registers limit 100 102
//     refused 5-HR101..120 exception 2 again 2026-05-01T10:00:00Z pause 60
//     refused-step 5-HR49..51 exception 2 again 2026-05-01T10:00:00Z pause 60
//     refused-function 5-IR1 exception 1 again 2026-05-01T10:00:00Z pause 3600
//
// The first two lines are always these; the others come in any order. Lines that are empty or begin with "#"
// say nothing.
//
// - "station N no-fill" and "station N one-by-one" are options that a person has given the station.
// - "cost" says how many microseconds a request takes by itself, and how many more for each register,
//   or for each eight bits.
// - "limit" says how many registers or bits at once were given at most, and how many at least were
//   refused: with 100 and 102 the device gives 100 or 101. Without such a line the protocol's limits hold.
// - "refused" is something wanted that the device does not give. "refused-step" is not wanted itself:
//   what ends with its first address and what begins with its last, or one after that, are given, but not
//   by one request. By "refused-function" the device refused the function with which the area is read.
// - "exception" is the code of the refusal, 0 where there was no answer. At the time after "again" it is
//   asked for once more, and if it is refused again, after twice the "pause", in seconds.
//
// Costs that were assumed and not measured are left out, and so is what was given: it shows at the first
// request.

namespace
{

const char Title[] = "driverhost learnt";
const char FormatLine[] = "format 1";
const char NoFill[] = "no-fill";
const char OneByOne[] = "one-by-one";
const qint64 Second = 1000;
const int MaxPause = 24 * 3600;
const double MaxCost = 3600e6;
const int MaxExceptionCode = 255;

enum class RefusalWord { Wanted, Step, Function };
const char *const RefusalWords[] = {"refused", "refused-step", "refused-function"};

Error expected(const QString &line, const char *what)
{
    return Error{QStringLiteral("\"%1\": expected %2").arg(line, QLatin1String(what))};
}

std::optional<Area> areaOfKind(const QString &word)
{
    if (word == QLatin1String("registers"))
        return Area::HoldingRegisters;
    return word == QLatin1String("bits") ? std::optional<Area>(Area::Coils) : std::nullopt;
}

class LearntReader
{
public:
    Result<Learnt> read(const QString &text)
    {
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (int i = 0; i < lines.size(); ++i) {
            const QString line = lines.at(i).simplified();
            if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
                continue;
            const Result<> read = readLine(line);
            if (!read)
                return Error{QStringLiteral("%1: %2").arg(QString::number(i + 1), read.errorText())};
        }
        if (m_linesRead < 2)
            return Error{QStringLiteral("expected the lines \"%1\" and \"%2\"")
                             .arg(QLatin1String(Title), QLatin1String(FormatLine))};
        return std::move(m_learnt);
    }

private:
    Result<> readLine(const QString &line)
    {
        const int number = m_linesRead++;
        if (number == 0)
            return line == QLatin1String(Title) ? Result<>() : expected(line, Title);
        if (number == 1)
            return line == QLatin1String(FormatLine) ? Result<>() : expected(line, FormatLine);
        const QStringList words = line.split(QLatin1Char(' '));
        return words.first() == QLatin1String("station") ? readStation(line, words)
                                                         : readRefusal(line, words);
    }

    Result<> readStation(const QString &line, const QStringList &words)
    {
        const Result<int> station =
            parseNumber(QStringLiteral("station"), words.value(1), 0, modbus::MaxStationNumber);
        if (!station)
            return station.error();
        StationFacts &facts = m_learnt[*station];
        const std::optional<Area> area = areaOfKind(words.value(2));
        if (words.size() == 3 && words.at(2) == QLatin1String(NoFill))
            facts.options.fillsGaps = false;
        else if (words.size() == 3 && words.at(2) == QLatin1String(OneByOne))
            facts.options.isOneByOne = true;
        else if (area && words.size() == 6 && words.at(3) == QLatin1String("cost"))
            return readCost(line, words, facts.requests(*area).cost);
        else if (area && words.size() == 6 && words.at(3) == QLatin1String("limit"))
            return readLimit(words, *area, facts.requests(*area).limit);
        else
            return expected(line, "no-fill, one-by-one, or registers or bits with a cost or a limit");
        return {};
    }

    static Result<> readCost(const QString &line, const QStringList &words, CostLearner &learner)
    {
        const RequestCost cost{words.at(4).toDouble(), words.at(5).toDouble()};
        const bool isPossible =
            cost.perRequest > 0 && cost.perRequest <= MaxCost && cost.perUnit >= 0 && cost.perUnit <= MaxCost;
        if (!isPossible)
            return expected(line, "microseconds for a request and for a register or eight bits");
        learner.restore(cost);
        return {};
    }

    static Result<> readLimit(const QStringList &words, Area area, CountLimit &limit)
    {
        const int maximum = isBitArea(area) ? modbus::MaxReadBits : modbus::MaxReadRegisters;
        const Result<int> given = parseNumber(QStringLiteral("limit"), words.at(4), 0, maximum);
        if (!given)
            return given.error();
        const Result<int> refused =
            parseNumber(QStringLiteral("limit"), words.at(5), *given + 1, maximum + 1);
        if (!refused)
            return refused.error();
        limit.restore(*given, *refused);
        return {};
    }

    Result<> readRefusal(const QString &line, const QStringList &words)
    {
        int word = 0;
        while (word < 3 && words.first() != QLatin1String(RefusalWords[word]))
            ++word;
        const Result<AreaRange> range = parseAreaRange(words.value(1));
        const QDateTime again = QDateTime::fromString(words.value(5), Qt::ISODate);
        const bool isWhole = word < 3 && words.size() == 8 && range && range->station > 0 &&
                             again.isValid() && words.at(2) == QLatin1String("exception") &&
                             words.at(4) == QLatin1String("again") && words.at(6) == QLatin1String("pause");
        if (!isWhole)
            return expected(line, "station, or refused 1-HR1..2 exception 2 again TIME pause SECONDS");
        const Result<int> exception =
            parseNumber(QStringLiteral("exception"), words.at(3), 0, MaxExceptionCode);
        if (!exception)
            return exception.error();
        const Result<int> pause = parseNumber(QStringLiteral("pause"), words.at(7), 1, MaxPause);
        if (!pause)
            return pause.error();
        Refusals &refusals = m_learnt[range->station].refusals(range->area);
        const bool isWanted = static_cast<RefusalWord>(word) != RefusalWord::Step;
        const Refusals::Refusal refusal{
            {range->first, range->last}, isWanted, *exception, again.toMSecsSinceEpoch(), *pause * Second};
        if (static_cast<RefusalWord>(word) == RefusalWord::Function)
            refusals.restoreNoFunction(refusal);
        else
            refusals.restore(refusal);
        return {};
    }

    Learnt m_learnt;
    int m_linesRead = 0;
};

QString refusalLine(RefusalWord word, const AreaRange &range, const Refusals::Refusal &refusal)
{
    const QDateTime again = QDateTime::fromMSecsSinceEpoch(refusal.askAgain, Qt::UTC);
    return QStringLiteral("%1 %2 exception %3 again %4 pause %5")
        .arg(QLatin1String(RefusalWords[static_cast<int>(word)]), rangeText(range),
             QString::number(refusal.exception), again.toString(Qt::ISODate),
             QString::number(std::max<qint64>(1, refusal.pause / Second)));
}

void addRequestLines(QStringList &lines, const QString &kind, RequestFacts &facts)
{
    if (facts.cost.isKnown()) {
        const RequestCost &cost = facts.cost.cost();
        lines +=
            QStringLiteral("%1 cost %2 %3")
                .arg(kind, QString::number(cost.perRequest, 'f', 1), QString::number(cost.perUnit, 'f', 1));
    }
    if (facts.limit.hasRefused())
        lines += QStringLiteral("%1 limit %2 %3")
                     .arg(kind, QString::number(facts.limit.given()), QString::number(facts.limit.refused()));
}

void addRefusalLines(QStringList &lines, int station, Area area, const Refusals &refusals)
{
    const auto rangeOf = [&](const Refusals::Refusal &refusal) {
        return AreaRange{station, area, refusal.span.first, refusal.span.last};
    };
    if (const std::optional<Refusals::Refusal> &refusal = refusals.noFunction())
        lines += refusalLine(RefusalWord::Function, rangeOf(*refusal), *refusal);
    for (const Refusals::Refusal &refusal : refusals.all()) {
        const bool isOpen = refusal.losses > 0 && !refusal.isWanted;
        if (!isOpen)
            lines += refusalLine(refusal.isWanted ? RefusalWord::Wanted : RefusalWord::Step, rangeOf(refusal),
                                 refusal);
    }
}

} // namespace

Result<Learnt> parseLearnt(const QString &text)
{
    return LearntReader().read(text);
}

QString textOf(Learnt &learnt)
{
    QStringList lines{QLatin1String(Title), QLatin1String(FormatLine)};
    for (auto &[station, facts] : learnt) {
        const QString begin = QStringLiteral("station %1 ").arg(station);
        if (!facts.options.fillsGaps)
            lines += begin + QLatin1String(NoFill);
        if (facts.options.isOneByOne)
            lines += begin + QLatin1String(OneByOne);
        addRequestLines(lines, begin + QStringLiteral("registers"), facts.requests(Area::HoldingRegisters));
        addRequestLines(lines, begin + QStringLiteral("bits"), facts.requests(Area::Coils));
        for (const Area area :
             {Area::DiscreteInputs, Area::Coils, Area::InputRegisters, Area::HoldingRegisters})
            addRefusalLines(lines, station, area, facts.refusals(area));
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

Result<Learnt> readLearntFile(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return Learnt();
    if (!file.open(QIODevice::ReadOnly))
        return Error{QStringLiteral("%1: %2").arg(path, file.errorString())};
    Result<Learnt> learnt = parseLearnt(QString::fromUtf8(file.readAll()));
    if (!learnt)
        return Error{QStringLiteral("%1:%2").arg(path, learnt.errorText())};
    return learnt;
}

Result<> writeLearntFile(const QString &path, Learnt &learnt)
{
    return writeWholeFile(path, textOf(learnt).toUtf8());
}
