#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"

#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"

#include <QDataStream>
#include <QIODevice>

namespace kit
{

namespace
{

template <typename Setting>
QByteArray contentOf(const Setting &setting)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << setting;
    return bytes;
}

void spoil(DeviceSetting &setting)
{
    setting.baudrate += 1;
    setting.deviceString += QLatin1String("spoiled");
}

void spoil(DriverSetting &setting)
{
    setting.timeout += 1;
    setting.stationId += 1;
}

// What a host does with default settings: it takes them, changes them, deletes them and asks again.
template <typename Setting>
void checkDefaults(Trial &trial, const QString &operation, const std::function<Setting *()> &ask)
{
    Setting *const first = ask();
    Setting *const second = ask();
    if (first == nullptr || second == nullptr) {
        trial.report(operation + QLatin1String(" returns an object"), QLatin1String("a null pointer"));
        return;
    }
    if (first == second) {
        trial.report(operation + QLatin1String(" returns a new object each time, which the host deletes"),
                     QLatin1String("the same object again"));
        return;
    }
    const QByteArray before = contentOf(*second);
    spoil(*first);
    delete first;
    const std::unique_ptr<Setting> third(ask());
    if (contentOf(*second) != before || contentOf(*third) != before)
        trial.report(operation + QLatin1String(" returns the same defaults again after one was changed"),
                     QLatin1String("other ones"));
    delete second;
}

void checkSettings(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    checkDefaults<DeviceSetting>(trial, QLatin1String("getDefaultSerialDeviceSetting()"),
                                 [driver]() { return driver->getDefaultSerialDeviceSetting(); });
    checkDefaults<DriverSetting>(trial, QLatin1String("getDefaultDriverSetting()"),
                                 [driver]() { return driver->getDefaultDriverSetting(); });
}

// A sample whose texts and bytes lie in memory that is gone once this is.
class LentSample
{
public:
    explicit LentSample(const Sample &sample)
        : m_address(new QChar[static_cast<size_t>(sample.command.address.size()) + 1]),
          m_data(new char[static_cast<size_t>(sample.data.size()) + 1]),
          m_sample(sample)
    {
        const QString &address = sample.command.address;
        std::copy(address.constData(), address.constData() + address.size(), m_address.get());
        std::copy(sample.data.constData(), sample.data.constData() + sample.data.size(), m_data.get());
        m_sample.command.address = QString::fromRawData(m_address.get(), address.size());
        m_sample.data = QByteArray::fromRawData(m_data.get(), sample.data.size());
    }

    const Sample &sample() const { return m_sample; }

private:
    std::unique_ptr<QChar[]> m_address;
    std::unique_ptr<char[]> m_data;
    Sample m_sample;
};

void reportStray(Trial &trial, const GoodRun &run, DriverLink &link, const QString &expected)
{
    const ScriptedChannel::Calls stray = link.strayCalls();
    if (stray.empty())
        return;
    Finding finding =
        findingOf(expected, QLatin1String("calls of it: ") + QString::fromStdString(traceOf(stray)));
    finding.command = textOf(run.sample);
    trial.report(finding);
}

// Each command comes on another channel, which is gone before the next, as is everything else that was lent.
void checkBorrowed(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink first(*driver, trial.subject());
    const GoodRuns runs = goodRuns(trial, first);
    if (runs.empty())
        return;
    for (const GoodRun &run : runs) {
        std::unique_ptr<DriverLink> link(new DriverLink(*driver, trial.subject()));
        std::unique_ptr<LentSample> lent(new LentSample(run.sample));
        const Outcome outcome = link->run(lent->sample());
        lent.reset();
        if (!hasSucceeded(run.sample, outcome))
            trial.report(findingOf(run.sample, outcome, QLatin1String("success on another channel")));
        driver->hasError();
        driver->getLastError();
        reportStray(trial, run, *link, QLatin1String("a channel is used within its command only"));
    }
    delete trial.plugin().object();
    reportStray(trial, runs.front(), first,
                QLatin1String("a channel is left alone by later commands and by the end of the driver"));
}

} // namespace

Checks ownershipChecks()
{
    return {
        {"ownership.settings", "The host deletes the default settings that it was given.", checkSettings},
        {"ownership.borrowed",
         "Channel, command and data are the host's: they are lent for one command and may be gone after it.",
         checkBorrowed},
    };
}

} // namespace kit
