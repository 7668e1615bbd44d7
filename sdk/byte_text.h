#pragma once

#include <QByteArray>
#include <QString>

/// Bytes as people read them in a text: "34 12 CD", two hexadecimal digits a byte; "nothing" for no bytes.
inline QString byteText(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return QLatin1String("nothing");
    const QByteArray digits = bytes.toHex().toUpper();
    QString text;
    for (int i = 0; i < digits.size(); i += 2)
        text += (i == 0 ? QString() : QString(QLatin1Char(' '))) + QString::fromLatin1(digits.mid(i, 2));
    return text;
}
