#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/doctor/observing/wanted_value.h"

#include <algorithm>

// Whether the values are the expected ones, and if not, where they are or how they would be.

namespace
{

// More values only repeat what these show.
const size_t MostJudged = 12;
const size_t MostSearched = 6;
const char *const Orders[] = {"ABCD", "CDAB", "BADC", "DCBA"};
const double Factors[] = {10, 100, 1000, 0.1, 0.01, 0.001};

std::vector<const Wanted *> judged(const DoctorOptions &options)
{
    std::vector<const Wanted *> found;
    for (const Wanted &one : options.wanted) {
        if (one.isJudged() && found.size() < MostJudged)
            found.push_back(&one);
    }
    return found;
}

const Asked *replyTo(const QByteArray &request, const Observations &seen)
{
    const auto found = std::find_if(seen.asked.begin(), seen.asked.end(), [&](const Asked &one) {
        return one.request == request && one.result == AskResult::Answered;
    });
    return found == seen.asked.end() ? nullptr : &*found;
}

bool isWide(const Wanted &wanted)
{
    return wanted.point.at.type.registers() > 1 && !wanted.point.at.type.isText();
}

// The values that a guess is about: those that could be read where they were expected, and an order of words
// only touches wide ones. Narrow ones have an order of bytes.
class Trial
{
public:
    Trial(const Observations &seen, const DoctorOptions &options) : m_seen(seen), m_wanted(judged(options))
    {
        m_hasWide =
            std::any_of(m_wanted.begin(), m_wanted.end(), [](const Wanted *one) { return isWide(*one); });
        std::copy_if(m_wanted.begin(), m_wanted.end(), std::back_inserter(m_ordered),
                     [&](const Wanted *one) { return touches(*one); });
    }

    bool hasValues() const
    {
        return std::any_of(m_wanted.begin(), m_wanted.end(), [&](const Wanted *one) {
            return replyTo(requestFor(*one, {}), m_seen) != nullptr;
        });
    }

    bool explains(const Guess &guess) const
    {
        int read = 0;
        for (const Wanted *one : m_wanted) {
            const Asked *reply = replyTo(requestFor(*one, guess), m_seen);
            if (reply == nullptr)
                continue;
            ++read;
            if (!fits(*one, valueIn(reply->reply, *one, ownGuess(guess, *one)), guess))
                return false;
        }
        const bool isAsGiven = guess.shift == 0 && !guess.isInOtherArea;
        return read > 0 && (isAsGiven || read * 2 > static_cast<int>(m_wanted.size()) ||
                            read >= static_cast<int>(MostSearched));
    }

    // Whether the order is another one than the values have.
    bool isOther(const ByteOrder &order) const
    {
        return std::any_of(m_ordered.begin(), m_ordered.end(),
                           [&](const Wanted *one) { return !(order == one->point.at.order); });
    }
    std::vector<ByteOrder> orders() const
    {
        std::vector<ByteOrder> others;
        for (const char *name : Orders) {
            const bool isByteOrder = !m_hasWide && QLatin1String(name) != QLatin1String("ABCD") &&
                                     QLatin1String(name) != QLatin1String("DCBA");
            const ByteOrder order{name[0] == 'A' || name[0] == 'B', name[0] == 'B' || name[0] == 'D'};
            if (!isByteOrder && isOther(order))
                others.push_back(order);
        }
        return others;
    }
    QString nameOfOrder(const ByteOrder &order) const
    {
        return nameOf(order, m_ordered.front()->point.at.type);
    }

    QStringList evidence(const Guess &guess) const
    {
        QStringList lines;
        for (const Wanted *one : m_wanted) {
            const Asked *asGiven = replyTo(requestFor(*one, {}), m_seen);
            const Asked *reply = replyTo(requestFor(*one, guess), m_seen);
            if (asGiven == nullptr || lines.size() > 8)
                continue;
            lines += QStringLiteral("%1 is %2, expected %3")
                         .arg(labelOf(one->point), shownText(*one, valueIn(asGiven->reply, *one)),
                              expectedText(*one));
            if (reply != nullptr && reply != asGiven)
                lines += QStringLiteral("    and %1 there")
                             .arg(shownText(*one, valueIn(reply->reply, *one, ownGuess(guess, *one))));
            else if (guess.order)
                lines += QStringLiteral("    and %1 in the other order")
                             .arg(shownText(*one, valueIn(asGiven->reply, *one, ownGuess(guess, *one))));
            lines += receivedText(asGiven->repliedAt, asGiven->reply);
        }
        return lines;
    }

private:
    bool touches(const Wanted &wanted) const
    {
        const ValueType &type = wanted.point.at.type;
        return isWide(wanted) || (!m_hasWide && type.bits == modbus::RegisterBits && !type.isText());
    }
    Guess ownGuess(Guess guess, const Wanted &wanted) const
    {
        if (!touches(wanted))
            guess.order.reset();
        return guess;
    }
    QByteArray requestFor(const Wanted &wanted, const Guess &guess) const
    {
        return ::requestFor(m_seen.working, wanted, guess);
    }
    static QString expectedText(const Wanted &wanted)
    {
        if (!wanted.expected.isEmpty())
            return wanted.expected;
        const QString low = wanted.point.low ? QString::number(*wanted.point.low) : QStringLiteral("any");
        const QString high = wanted.point.high ? QString::number(*wanted.point.high) : QStringLiteral("any");
        return QStringLiteral("%1 to %2").arg(low, high);
    }

    const Observations &m_seen;
    std::vector<const Wanted *> m_wanted;
    std::vector<const Wanted *> m_ordered; // that an order touches
    bool m_hasWide = false;
};

const std::vector<Guess> &places()
{
    static const std::vector<Guess> others = {{1, false, {}, 1}, {-1, false, {}, 1}, {0, true, {}, 1}};
    return others;
}

void observe(Examiner &examiner)
{
    Observations &seen = examiner.seen();
    const Trial trial(seen, examiner.options());
    if (seen.working < 0 || trial.explains({}) || !trial.hasValues())
        return;
    const std::vector<const Wanted *> wanted = judged(examiner.options());
    for (const Guess &guess : places()) {
        for (size_t i = 0; i < wanted.size() && i < MostSearched; ++i) {
            const QByteArray request = requestFor(seen.working, *wanted[i], guess);
            if (!request.isEmpty() && examiner.hasTimeFor(examiner.usualWait()))
                examiner.askPatiently(Purpose::Value, request);
        }
    }
}

// The guesses with the fewest changes that explain everything.
std::vector<Guess> explanations(const Trial &trial)
{
    std::vector<Guess> single = places();
    for (const ByteOrder &order : trial.orders())
        single.push_back({0, false, order, 1});
    std::vector<Guess> found;
    std::copy_if(single.begin(), single.end(), std::back_inserter(found),
                 [&](const Guess &guess) { return trial.explains(guess); });
    if (!found.empty())
        return found;
    for (const Guess &place : places()) {
        for (const ByteOrder &order : trial.orders()) {
            const Guess both{place.shift, place.isInOtherArea, order, 1};
            if (trial.explains(both))
                found.push_back(both);
        }
    }
    for (const double factor : Factors) {
        const Guess scaled{0, false, {}, factor};
        if (found.empty() && trial.explains(scaled))
            found.push_back(scaled);
    }
    return found;
}

void addExplanation(const Guess &guess, const Trial &trial, const DoctorOptions &options,
                    Judgement &judgement)
{
    const QStringList evidence = trial.evidence(guess);
    const Area area = judged(options).front()->point.at.address.area;
    if (guess.shift != 0) {
        judgement.remedy.shift = guess.shift;
        judgement.add(FindingKind::OffByOne,
                      QStringLiteral("the numbers are off by one: the values stand one address %1")
                          .arg(guess.shift > 0 ? QStringLiteral("higher") : QStringLiteral("lower")),
                      evidence,
                      guess.shift > 0 ? QStringLiteral("Here: add 1, the list counts from 0.")
                                      : QStringLiteral("Here: subtract 1."));
    }
    if (guess.isInOtherArea) {
        judgement.remedy.area = otherArea(area);
        judgement.add(FindingKind::OtherArea,
                      QStringLiteral("the values stand in %1 and not in %2")
                          .arg(lettersOf(otherArea(area)), lettersOf(area)),
                      evidence);
    }
    if (guess.order) {
        judgement.remedy.order = trial.nameOfOrder(*guess.order);
        judgement.add(FindingKind::WordOrder,
                      QStringLiteral("the values have the order %1").arg(judgement.remedy.order), evidence,
                      QStringLiteral("Here: @%1.").arg(judgement.remedy.order));
    }
    if (guess.factor != 1)
        judgement.add(FindingKind::Scaled,
                      QStringLiteral("what is read is the expected value times %1").arg(guess.factor),
                      evidence, QStringLiteral("Here: scale %1.").arg(1 / guess.factor));
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    const Trial trial(seen, options);
    if (seen.working < 0 || !trial.hasValues() || trial.explains({}))
        return judgement;
    const std::vector<Guess> found = explanations(trial);
    if (found.empty())
        judgement.add(FindingKind::OtherValues,
                      QStringLiteral("the values that were read are not the expected ones"),
                      trial.evidence({}));
    else if (found.size() > 1)
        judgement.add(FindingKind::AmbiguousValues,
                      QStringLiteral("the values that were read are not the expected ones, and %1 changes "
                                     "would explain that")
                          .arg(found.size()),
                      trial.evidence({}));
    else
        addExplanation(found.front(), trial, options, judgement);
    return judgement;
}

} // namespace

Examination valueExamination()
{
    return {"comparing values", observe, judge};
}
