#pragma once

#include "kit/subject/difference.h"
#include "kit/subject/sample.h"

#include "drivers/device_setting.h"

namespace kit
{

/// What the kit has to know about a driver: what it can do, the slave that it talks to, and where it differs.
/// Whoever writes a driver derives one class from this:
///
///     class LineSlave : public kit::Subject
///     {
///     public:
///         kit::Samples samples() const override { return {kit::readOf(WordItem, QLatin1String("D1"), 2)}; }
///         QByteArray reply(const QByteArray &request) override { return ...; }
///     };
///     DRIVER_CONFORMANCE_SUBJECT(LineSlave)
///
/// Every check runs in a process of its own, so a slave starts each as it was made.
class Subject
{
public:
    virtual ~Subject() {}

    /// Commands that succeed. Each kind of command that the driver has should be among them, reads and
    /// writes; a read of something that another sample writes gives no expected bytes.
    virtual Samples samples() const = 0;
    /// The slave: what it answers to the bytes of one request; nothing when it stays silent. A good slave
    /// answers every request that the driver can send, and takes the station from the request.
    virtual QByteArray reply(const QByteArray &request) = 0;

    /// Whether it answers every request that the driver can send; a recording does not.
    virtual bool answersEverything() const { return true; }

    /// What the slave answers when it refuses a request, as for an address that it does not have. Nothing
    /// when the protocol has no such answer.
    virtual QByteArray refusal(const QByteArray & /*request*/) { return QByteArray(); }
    /// Further commands that the driver must refuse without sending anything.
    virtual std::vector<CommunicatorCommand> refused() const { return std::vector<CommunicatorCommand>(); }
    /// Where the driver differs from what the kit expects.
    virtual Differences differences() const { return Differences(); }

    /// The station of the link.
    virtual int stationId() const { return 1; }
    /// The settings of the link.
    virtual DeviceSetting deviceSetting() const
    {
        return DeviceSetting(DefaultDeviceType, QLatin1String("ETHERNET"), 9600, 8, 0, 2);
    }
    /// Makes what the driver looks for outside the channel, such as a project database beside the program.
    /// Called once, before any check. Returns what is missing; empty when all is there.
    virtual QString prepare() { return QString(); }
    /// Removes what prepare() made. Called once, after all checks.
    virtual void cleanUp() {}
    /// Called before a command is sent, for slaves that play back what was recorded.
    virtual void begin(const Sample & /*sample*/) {}
};

} // namespace kit
