#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "drivers/tools/command_data.h"

#include <QStringList>

namespace kit
{

namespace
{

struct Answer {
    const char *operation;
    QString text;
};
using Answers = std::vector<Answer>;

Answers textsOf(DriverInterface &driver)
{
    return {{"name()", driver.name()},
            {"vender()", driver.vender()},
            {"getVersionNumber()", driver.getVersionNumber()},
            {"getStringBasedDefaultDriverSetting()", driver.getStringBasedDefaultDriverSetting()}};
}

Answers numbersOf(DriverInterface &driver)
{
    return {{"totalSize()", QString::number(driver.totalSize())},
            {"supportedCommunicationFlags()", QString::number(driver.supportedCommunicationFlags())},
            {"getBlockAccessSize()", QString::number(driver.getBlockAccessSize())},
            {"getBitBlockAccessSize()", QString::number(driver.getBitBlockAccessSize())},
            {"isSupportSessionCommand()", QString::number(driver.isSupportSessionCommand() ? 1 : 0)}};
}

void compare(Trial &trial, const Answers &before, const Answers &after, const QString &when)
{
    for (size_t i = 0; i < before.size(); ++i)
        if (before[i].text != after[i].text)
            trial.report(QLatin1String(before[i].operation) + QLatin1String(" answers \"") + before[i].text +
                             QLatin1String("\" always"),
                         QLatin1Char('"') + after[i].text + QLatin1String("\" ") + when);
}

// The answers at the beginning, after commands, and of another object.
void checkStable(Trial &trial, Answers (*ask)(DriverInterface &driver))
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    const Answers before = ask(*driver);
    compare(trial, before, ask(*driver), QLatin1String("when asked again"));
    DriverLink link(*driver, trial.subject());
    for (const GoodRun &run : goodRuns(trial, link)) {
        compare(trial, before, ask(*driver), QLatin1String("after a command"));
        link.runWith(silence(0), run.sample);
        compare(trial, before, ask(*driver), QLatin1String("after a command that failed"));
    }
    const std::unique_ptr<DriverInterface> another = trial.plugin().create();
    if (another)
        compare(trial, before, ask(*another), QLatin1String("from another object"));
}

void checkTexts(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    const Answers texts = textsOf(*driver);
    for (const Answer &answer : texts)
        if (answer.text.trimmed().isEmpty() || answer.text == QLatin1String("Not Assigned"))
            trial.report(QLatin1String(answer.operation) + QLatin1String(" answers a text of this driver"),
                         QLatin1Char('"') + answer.text + QLatin1Char('"'));
    checkStable(trial, textsOf);
}

void checkNumbers(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    if (driver->getBlockAccessSize() < 0 || driver->getBitBlockAccessSize() < 0)
        trial.report(QLatin1String("block sizes of 0 or more"), QLatin1String("a negative one"));
    if (driver->getBlockAccessSize() == 0 && driver->getBitBlockAccessSize() == 0)
        trial.report(QLatin1String("a block size above 0 for registers or for bits"), QLatin1String("none"));
    checkStable(trial, numbersOf);
}

// The sample with as many items as the driver says it takes at once; 0: not one that is counted by blocks.
int largestCount(DriverInterface &driver, const CommunicatorCommand &command)
{
    if (isWordCommand(command))
        return driver.getBlockAccessSize();
    return isBitCommand(command) ? driver.getBitBlockAccessSize() : 0;
}

void checkBlockSize(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    if (!trial.subject().answersEverything()) {
        trial.skip(QLatin1String("the slave answers recorded requests only"));
        return;
    }
    DriverLink link(*driver, trial.subject());
    bool isChecked = false;
    for (const GoodRun &run : goodRuns(trial, link)) {
        Sample sample = run.sample;
        sample.command.count = largestCount(*driver, sample.command);
        const bool isRegisterBit = sample.command.address.contains(QLatin1Char('.'));
        if (sample.isWrite || isRegisterBit || sample.command.count <= run.sample.command.count)
            continue;
        isChecked = true;
        const Outcome outcome = link.runOnOpenChannel(sample);
        if (!hasSucceeded(sample, outcome))
            trial.report(findingOf(sample, outcome, QLatin1String("a read of a whole block succeeds")));
    }
    if (!isChecked && !trial.isSkipped())
        trial.skip(QLatin1String("no sample reads fewer words or bits than a block has"));
}

} // namespace

Checks identityChecks()
{
    return {
        {"identity.texts", "People choose the driver by its name and find it by its version in a log.",
         checkTexts},
        {"identity.numbers", "A host asks for sizes and flags once and lays its requests out by them.",
         checkNumbers},
        {"identity.block-size", "A host asks for as much at once as the driver says it takes.",
         checkBlockSize},
    };
}

} // namespace kit
