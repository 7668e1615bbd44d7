#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "drivers/qt/qt_lines.h"

namespace kit
{

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

using Damages = std::function<Troubles(const Exchange &exchange, int at)>;
using Judge = std::function<bool(DriverLink &link, const GoodRun &run, const Outcome &outcome)>;

// Takes every reply of every sample through its damages; a success after one must be what \a judge calls
// right.
void expectFailures(Trial &trial, const Damages &damages, const Judge &judge)
{
    forEachExchange(trial, [&](DriverLink &link, const GoodRun &run, const Exchange &exchange, int at) {
        for (const Trouble &trouble : damages(exchange, at)) {
            const Outcome outcome = link.runWith(trouble, run.sample);
            if (hasSucceeded(run.sample, outcome) && !judge(link, run, outcome))
                trial.report(findingOf(run.sample, outcome, text("a failure after ") + trouble.name));
        }
    });
}

bool isNeverRight(DriverLink & /*link*/, const GoodRun & /*run*/, const Outcome & /*outcome*/)
{
    return false;
}

// A driver that finds the frame among stray bytes is as good as one that refuses it.
bool isRightRead(DriverLink &link, const GoodRun &run, const Outcome &outcome)
{
    return !run.sample.isWrite && hasRightData(link, run, outcome);
}

Troubles flips(const Exchange &exchange, int at)
{
    Troubles troubles;
    for (int bit = 0; bit < exchange.reply.size() * 8; ++bit)
        troubles.push_back(flippedBit(at, bit));
    return troubles;
}

QByteArray withStrayByte(const QByteArray &reply, int place, char byte)
{
    return reply.left(place) + byte + reply.mid(place);
}

Troubles strayBytes(const Exchange &exchange, int at)
{
    Troubles troubles;
    for (int place = 0; place < exchange.reply.size(); ++place)
        for (const char byte : {'\0', '\xFF', exchange.reply.at(place)}) {
            // In a row of equal bytes one more does not show before the end.
            if (withStrayByte(exchange.reply, place, byte).left(exchange.reply.size()) == exchange.reply)
                continue;
            const QString name = QString::fromLatin1("a reply with a stray byte %1 before byte %2")
                                     .arg(hexText(QByteArray(1, byte)))
                                     .arg(place);
            troubles.push_back(changedReply(at, name, [place, byte](const QByteArray &reply) {
                return withStrayByte(reply, place, byte);
            }));
        }
    return troubles;
}

Troubles noises(const Exchange &exchange, int at)
{
    const int size = sizeOf(exchange.reply) + 8;
    return {otherReply(at, text("a reply of zeros"), QByteArray(size, '\0')),
            otherReply(at, text("a reply of ones"), QByteArray(size, '\xFF')),
            otherReply(at, text("a reply of letters"), QByteArray(size, 'U'))};
}

void checkBitFlips(Trial &trial)
{
    expectFailures(trial, flips, isNeverRight);
}

void checkStrayBytes(Trial &trial)
{
    expectFailures(trial, strayBytes, isRightRead);
}

void checkNoise(Trial &trial)
{
    expectFailures(trial, noises, isNeverRight);
}

} // namespace

Checks corruptionChecks()
{
    return {
        {"corruption.bit-flips",
         "A wrong value in a plant is worse than none: any bit of a reply may be wrong.", checkBitFlips},
        {"corruption.stray-bytes", "Lines and gateways put in bytes that nobody sent.", checkStrayBytes},
        {"corruption.noise", "A line that nobody drives reads as something, too.", checkNoise},
    };
}

} // namespace kit
