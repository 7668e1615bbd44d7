#include "kit/subject/sample.h"

#include "sdk/byte_text.h"

namespace kit
{

namespace
{

QString itemName(int dataType)
{
    static const char *const names[] = {
        "bit", "byte", "word", "double word", "eight-byte item", "block byte", "bit of the second kind"};
    if (dataType >= BitItem && dataType <= SecondBitItem)
        return QLatin1String(names[dataType]);
    return QString::fromLatin1("item of kind %1").arg(dataType);
}

// "2 words", "1 item of kind 9".
QString counted(int count, const QString &name)
{
    const QString plural =
        count == 1 || name.contains(QLatin1String(" of ")) ? QString() : QLatin1String("s");
    return QString::number(count) + QLatin1Char(' ') + name + plural;
}

// Addresses may be as long as somebody likes.
QString shortened(const QString &address)
{
    const int longest = 40;
    if (address.size() <= longest)
        return address;
    return QString::fromLatin1("%1... (%2 characters)").arg(address.left(longest)).arg(address.size());
}

} // namespace

Sample readOf(int dataType, const QString &address, int count, const QByteArray &expected)
{
    return Sample{makeCommand(dataType, address, count), false, expected, -1};
}

Sample writeOf(int dataType, const QString &address, int count, const QByteArray &data)
{
    return Sample{makeCommand(dataType, address, count), true, data, -1};
}

QString textOf(const CommunicatorCommand &command)
{
    return counted(command.count, itemName(command.dataType)) + QLatin1String(" at ") +
           (command.address.isEmpty() ? QLatin1String("an empty address") : shortened(command.address));
}

QString textOf(const Sample &sample)
{
    const QString station =
        sample.station < 0 ? QString() : QString::fromLatin1(" of station %1").arg(sample.station);
    if (!sample.isWrite)
        return QLatin1String("read ") + textOf(sample.command) + station;
    return QLatin1String("write ") + textOf(sample.command) + station + QLatin1String(": ") +
           hexText(sample.data);
}

QString hexText(const QByteArray &bytes)
{
    const int most = 300;
    if (bytes.size() <= most)
        return byteText(bytes);
    return QString::fromLatin1("%1 ... (%2 bytes)").arg(byteText(bytes.left(most))).arg(bytes.size());
}

} // namespace kit
