// Streams of DriverSetting: read as four numbers, and written back to the same bytes.

#include "drivers/driver_setting.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

#include <QDataStream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto order = input.byte() % 2 == 0 ? QDataStream::BigEndian : QDataStream::LittleEndian;
    const QByteArray bytes = input.rest();

    qint32 numbers[4] = {};
    QDataStream plain(bytes);
    plain.setByteOrder(order);
    for (qint32 &number : numbers)
        plain >> number;

    DriverSetting setting(1, 2, 3, 4, QString(), 5, QStringLiteral("kept"), true);
    QDataStream stream(bytes);
    stream.setByteOrder(order);
    stream >> setting;
    FUZZ_CHECK(stream.status() == plain.status());
    FUZZ_CHECK(setting.timeout == numbers[0] && setting.retry == numbers[1]);
    FUZZ_CHECK(setting.stationId == numbers[2] && setting.delay == numbers[3]);
    FUZZ_CHECK(setting.auxText == QLatin1String("kept") && setting.auxFlag);

    QByteArray written;
    QDataStream out(&written, QIODevice::WriteOnly);
    out.setByteOrder(order);
    out << setting;
    FUZZ_CHECK(written.size() == 16);
    FUZZ_CHECK(stream.status() != QDataStream::Ok || written == bytes.left(16));
    setting.dump();
    return 0;
}
