#include "fuzz/support/command.h"

#include "fuzz/support/check.h"
#include "tests/doubles/frames.h"

#include <limits>

namespace fuzz
{

namespace
{

const Area Areas[] = {
    {"HR", true, false, false},  {"FN6HR", true, false, false}, {"IR", false, false, false},
    {"DI", false, false, true},  {"DO", false, true, true},     {"FN5DO", false, true, true},
    {"SW", false, false, false}, {"fn6hr", true, false, false}, {"hr", true, false, false},
    {"do", false, true, true},   {"di", false, false, true},    {"XX", false, false, false},
};

int takeCount(Input &input)
{
    const int first = input.byte();
    if (first < 0xF0)
        return first;
    switch (first) {
    case 0xFE: return std::numeric_limits<int>::min();
    case 0xFF: return std::numeric_limits<int>::max();
    default: return static_cast<qint16>(input.word());
    }
}

// The item kinds have the same words in both directions, with "(s)" in one of them.
QString details(const SlaveChannel &channel, const CommunicatorCommand &command, const char *format)
{
    static const char *const items[] = {"bit", "byte", "word", "dword"};
    if (command.dataType > DoubleWordItem)
        return QString();
    return QString::asprintf(format, command.count, items[command.dataType], channel.station & 0xFF) +
           command.address + QLatin1Char(')');
}

} // namespace

Command takeCommand(Input &input)
{
    Command command;
    command.dataType = input.byte() % 8;
    command.area = &Areas[input.byte() % (sizeof Areas / sizeof *Areas)];
    const int number = input.word();
    const int suffix = input.byte();
    command.offset = static_cast<quint16>(number - 1);
    command.bit = suffix > 1 ? suffix - 2 : 0;
    command.address = QLatin1String(command.area->text) + QString::number(number);
    if (suffix == 1)
        command.address += QLatin1String("sW");
    if (suffix > 1)
        command.address += QLatin1Char('.') + QString::number(command.bit);
    command.highWordFirst = suffix == 1 || command.areaIs("SW");
    command.count = takeCount(input);
    return command;
}

void takeLink(Input &input, SlaveChannel &channel)
{
    static const int stations[] = {1, 2, 3, 4, 0, 255, 257, -1};
    channel.station = stations[input.byte() % (sizeof stations / sizeof *stations)];
    const int flags = input.byte();
    channel.retries = flags % 5 - 1;
    channel.connected = (flags & 0x80) == 0;
}

QString refusal(const char *what, const QString &area, int offset)
{
    return QLatin1String(what) + area + QString::number(offset + 1);
}

bool checkOutcome(const SlaveChannel &channel, const Plan &plan, DriverInterface &driver,
                  const CommunicatorCommand &command, const char *detailsFormat)
{
    int closes = 0;
    for (const Exchange &exchange : channel.exchanges)
        closes += channel.judge(exchange).closes ? 1 : 0;
    FUZZ_CHECK(channel.closes == closes);

    const QList<Exchange> attempt = channel.lastAttempt();
    if (channel.openFailed) {
        FUZZ_CHECK(attempt.isEmpty());
        FUZZ_CHECK(driver.hasError() && driver.getLastError() == channel.errorString());
        return false;
    }

    QString error;
    FUZZ_CHECK(attempt.size() <= plan.requests.size());
    for (int i = 0; i < attempt.size(); ++i) {
        FUZZ_CHECK(error.isEmpty());
        FUZZ_CHECK(attempt.at(i).request == plan.requests.at(i));
        error = channel.judge(attempt.at(i)).error;
    }
    if (error.isEmpty()) {
        FUZZ_CHECK(attempt.size() == plan.requests.size());
        error = plan.refusal;
    }

    FUZZ_CHECK(driver.hasError() == !error.isEmpty());
    FUZZ_CHECK(channel.attempts <= qMax(channel.retries, 0) + 1);
    if (error.isEmpty())
        return true;
    FUZZ_CHECK(channel.attempts == qMax(channel.retries, 0) + 1);
    FUZZ_CHECK(driver.getLastError() == error + details(channel, command, detailsFormat));
    return false;
}

void checkUnsupported(const SlaveChannel &channel, DriverInterface &driver,
                      const CommunicatorCommand &command)
{
    FUZZ_CHECK(channel.exchanges.isEmpty() && channel.attempts == 1);
    FUZZ_CHECK(driver.hasError());
    FUZZ_CHECK(driver.getLastError() == (channel.openFailed
                                             ? channel.errorString()
                                             : QLatin1String("unsupported data type: ") + command.address));
}

} // namespace fuzz
