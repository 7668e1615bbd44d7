// The trace of a master: every byte that it is told of stands in a line, once and in order, whatever the
// bytes are.

#include "desk/wire/trace.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace
{

const int MaxSteps = 100;

// The bytes of a line: those between the mark and the meaning.
QByteArray bytesOf(const QString &line)
{
    const QString rest = line.section(QLatin1Char(' '), 2);
    return QByteArray::fromHex(rest.left(rest.indexOf(QLatin1String("  "))).toLatin1());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    QByteArray told;
    QByteArray traced;
    {
        MasterTrace trace([&traced](const QString &line) {
            FUZZ_CHECK(!line.contains(QLatin1Char('\n')));
            if (line.section(QLatin1Char(' '), 1, 1) != QLatin1String("-"))
                traced += bytesOf(line);
        });
        for (int step = 0; step < MaxSteps && !input.isEmpty(); ++step) {
            const int kind = input.byte() % 5;
            if (kind == 4) {
                trace.event(QStringLiteral("time-out"));
                continue;
            }
            const QByteArray bytes = input.bytes(1 + input.byte());
            told += bytes;
            if (kind == 0)
                trace.sent(bytes);
            else if (kind == 1)
                trace.received(bytes);
            else if (kind == 2)
                trace.dropped(bytes);
            else
                trace.skipped(bytes, QStringLiteral("noise"));
        }
    }
    FUZZ_CHECK(traced == told);
    return 0;
}
