#include "desk/project/device_text.h"

#include <QRegularExpression>

namespace
{

const int EthernetHmiPort = 2000;
const int FirstSerialHmiPort = 999;
// COM4294967295 is more than any panel has; above it the driver's arithmetic wraps.
const int MaxPortDigits = 5;

} // namespace

Result<> checkDeviceText(const QString &device)
{
    static const QRegularExpression link(
        QStringLiteral("^(?:ethernet.*|.*[^0-9][0-9]{1,%1})$").arg(MaxPortDigits),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    if (link.match(device).hasMatch())
        return {};
    return Error{QStringLiteral(
                     "device \"%1\": expected ETHERNET, or a port name that ends in its number, such as COM1")
                     .arg(device)};
}

QString deviceTextOf(int hmiPort)
{
    if (hmiPort == EthernetHmiPort)
        return QStringLiteral("ETHERNET");
    return QStringLiteral("COM%1").arg(hmiPort - FirstSerialHmiPort);
}
