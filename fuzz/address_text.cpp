// Address texts: the parse against one that follows its description letter by letter, and reads and writes of
// what came out over a slave without faults.

#include "drivers/modbus_rtu_slave_over_tcp/address_text.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "fuzz/support/check.h"
#include "fuzz/support/project_file.h"
#include "fuzz/support/slave_channel.h"
#include "tests/doubles/command.h"
#include "tests/doubles/frames.h"

#include <algorithm>
#include <cctype>

using namespace fuzz;

namespace
{

struct Parsed {
    QByteArray area;
    unsigned short offset = 65535;
    unsigned char bit = 0;
};

bool isAscii(char c, int (*isKind)(int))
{
    const auto value = static_cast<unsigned char>(c);
    return value < 0x80 && isKind(value) != 0;
}

Parsed parse(const QByteArray &text)
{
    Parsed parsed;
    int i = 0;
    if (!text.isEmpty() && (text.at(0) == 'F' || text.at(0) == 'f')) {
        parsed.area = text.left(3);
        i = 3;
    }
    for (; i < text.size() && isAscii(text.at(i), std::isalpha); ++i)
        parsed.area += text.at(i);
    if (i >= text.size())
        return parsed;
    if (isAscii(text.at(i), std::isdigit)) {
        quint32 number = 0;
        for (; i < text.size() && isAscii(text.at(i), std::isdigit); ++i)
            number = number * 10 + static_cast<quint32>(text.at(i) - '0');
        parsed.offset = static_cast<unsigned short>(number - 1);
    }
    if (i < text.size() && text.at(i) == '.') {
        for (++i; i < text.size() && isAscii(text.at(i), std::isdigit); ++i)
            parsed.bit = static_cast<unsigned char>(parsed.bit * 10 + (text.at(i) - '0'));
    }
    return parsed;
}

// Bytes of bit areas are asked for by what the project uses, not by the address alone.
bool goesOutAsItStands(const CommunicatorCommand &command, const Parsed &parsed)
{
    if (!isByteCommand(command) && !isBlockCommand(command))
        return true;
    const auto areas = {"HR", "FN6HR", "IR"};
    return std::any_of(areas.begin(), areas.end(),
                       [&](const char *area) { return qstricmp(parsed.area.constData(), area) == 0; });
}

void checkFirstRequest(const SlaveChannel &channel, const Parsed &parsed)
{
    if (!channel.exchanges.isEmpty())
        FUZZ_CHECK(wordAt(channel.exchanges.first().request, 2) == parsed.offset);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool hasProject = (writeProject({QStringLiteral("DI1"), QStringLiteral("DO9")}), true);
    FUZZ_CHECK(hasProject);
    static DriverModbusRtuSlaveOverTcp driver;

    Input input(data, size);
    const int dataType = input.byte() % 8;
    const int count = input.byte();
    const CommunicatorCommand command = makeCommand(dataType, QString::fromUtf8(input.rest()), count);
    const Parsed expected = parse(command.address.toLatin1());

    Parsed parsed;
    parsed.offset = 0;
    ModbusRTUSlaveParseAddress(command.address, parsed.area, parsed.offset, parsed.bit);
    FUZZ_CHECK(parsed.area == expected.area);
    FUZZ_CHECK(parsed.offset == expected.offset);
    FUZZ_CHECK(parsed.bit == expected.bit);

    SlaveChannel reading;
    const QByteArray read = driver.read(&reading, command);
    FUZZ_CHECK(!driver.hasError() || read.isEmpty());
    // The kinds whose failures get the command's details.
    if (driver.hasError() && command.dataType <= DoubleWordItem)
        FUZZ_CHECK(driver.getLastError().endsWith(QLatin1String("1-") + command.address + QLatin1Char(')')));
    if (goesOutAsItStands(command, expected))
        checkFirstRequest(reading, expected);

    SlaveChannel writing;
    const bool written = driver.write(&writing, command, QByteArray(command.count, '\x55'));
    FUZZ_CHECK(!(written && driver.hasError()));
    checkFirstRequest(writing, expected);
    return 0;
}
