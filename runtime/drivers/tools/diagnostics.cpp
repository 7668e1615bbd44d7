#include "drivers/tools/diagnostics.h"

#include <algorithm>

QString dumpByteArray(const QByteArray &bytes)
{
    QString text = QLatin1String("(");
    for (int i = 0; i < bytes.size(); ++i)
        text += QLatin1String("0X") + QString::number(static_cast<unsigned char>(bytes.at(i)), 16) +
                QLatin1Char(' ');
    // Raw data that the array only refers to has no zero byte at its end.
    const auto length = static_cast<int>(qstrnlen(bytes.constData(), static_cast<uint>(bytes.size())));
    return text + QLatin1String(") : ") + QString::fromLatin1(bytes.constData(), length);
}

QByteArray reverseArray(const QByteArray &bytes)
{
    QByteArray reversed = bytes;
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

QList<int> EmptyPackageSizeList()
{
    return QList<int>();
}
