#include "drivers/tools.h"
#include "kit/program/conformance.h"

#include <map>

/// What the kit has to know to try the line driver: a device to talk to, and where the driver differs.

namespace
{

const int RequestHead = 10; // a colon, station, kind, register, count
const int RequestTail = 3;  // the check and a carriage return

int numberAt(const QByteArray &digits, int place, int size)
{
    return digits.mid(place, size).toInt(nullptr, 16);
}

QByteArray digitsOf(int number, int size)
{
    return QByteArray::number(number, 16).rightJustified(size, '0').toUpper();
}

// A frame as it lies on the wire: its check and its end are added.
QByteArray framed(const QByteArray &bytes)
{
    int check = 0;
    for (int i = 0; i < bytes.size(); ++i)
        check ^= static_cast<unsigned char>(bytes.at(i));
    return bytes + digitsOf(check, 2) + '\r';
}

class LineSlave : public kit::Subject
{
public:
    kit::Samples samples() const override
    {
        const QByteArray four = QByteArray::fromHex("3412CDAB78560100");
        return {kit::readOf(WordItem, QLatin1String("D100"), 1, QByteArray::fromHex("6400")),
                kit::readOf(WordItem, QLatin1String("D300"), 1, QByteArray::fromHex("2C01")),
                kit::readOf(WordItem, QLatin1String("D200"), 3, QByteArray::fromHex("C800C900CA00")),
                kit::writeOf(WordItem, QLatin1String("d65530"), 1, four.left(2)),
                kit::writeOf(WordItem, QLatin1String("D7"), 4, four)};
    }

    QByteArray reply(const QByteArray &request) override
    {
        const QByteArray body = request.left(request.size() - RequestTail);
        if (body.size() < RequestHead || framed(body) != request)
            return QByteArray();
        const int first = numberAt(request, 4, 4);
        const int count = numberAt(request, 8, 2);
        if (request.at(3) == 'R')
            return framed(request.left(4) + valuesAt(first, count));
        for (int i = 0; i < count; ++i)
            registers[first + i] = numberAt(request, RequestHead + 4 * i, 4);
        return framed(request.left(4));
    }

    QByteArray refusal(const QByteArray &request) override { return framed(request.left(3) + "E07"); }

    std::vector<CommunicatorCommand> refused() const override
    {
        return {kit::makeCommand(BitItem, QLatin1String("D1"), 1),
                kit::makeCommand(DoubleWordItem, QLatin1String("D1"), 1),
                kit::makeCommand(WordItem, QLatin1String("D0"), 1),
                kit::makeCommand(WordItem, QLatin1String("D65537"), 1),
                kit::makeCommand(WordItem, QLatin1String("D1.5"), 1),
                kit::makeCommand(WordItem, QLatin1String("E1"), 1),
                kit::makeCommand(WordItem, QLatin1String("D1"), 0),
                kit::makeCommand(WordItem, QLatin1String("D1"), 65),
                kit::makeCommand(WordItem, QLatin1String("D65536"), 2)};
    }

    kit::Differences differences() const override
    {
        return {{QLatin1String("staleness.other-request"),
                 QLatin1String("an answer does not say which registers it is about, only how many"),
                 [](const kit::Finding &finding) { return finding.reply.mid(3, 1) == "R"; }}};
    }

    int stationId() const override { return 0x1A; }

private:
    // A register that nobody wrote holds its number.
    QByteArray valuesAt(int first, int count) const
    {
        QByteArray digits;
        for (int i = 0; i < count; ++i) {
            const auto written = registers.find(first + i);
            digits += digitsOf(written == registers.end() ? first + i + 1 : written->second, 4);
        }
        return digits;
    }

    std::map<int, int> registers;
};

} // namespace

DRIVER_CONFORMANCE_SUBJECT(LineSlave)
