#include "kit/subject/transcript_words.h"

#include "drivers/tools/command_data.h"

namespace kit
{

namespace
{

const char *const KindNames[] = {"bit", "byte", "word", "dword", "eight", "block", "bit2"};

QString kindName(int dataType)
{
    if (dataType >= BitItem && dataType <= SecondBitItem)
        return QLatin1String(KindNames[dataType]);
    return QString::number(dataType);
}

bool parseKind(const QString &word, int &dataType)
{
    for (int kind = BitItem; kind <= SecondBitItem; ++kind)
        if (word == QLatin1String(KindNames[kind])) {
            dataType = kind;
            return true;
        }
    bool isNumber = false;
    dataType = word.toInt(&isNumber);
    return isNumber;
}

bool isHexDigit(QChar character)
{
    const ushort code = character.toLower().unicode();
    return (code >= '0' && code <= '9') || (code >= 'a' && code <= 'f');
}

} // namespace

QString firstWord(const QString &line)
{
    int end = 0;
    while (end < line.size() && !line.at(end).isSpace())
        ++end;
    return line.left(end);
}

QString afterFirstWord(const QString &line)
{
    return line.mid(firstWord(line).size()).trimmed();
}

bool parseBytes(const QString &text, QByteArray &bytes)
{
    QByteArray digits;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isSpace() && digits.size() % 2 == 0)
            continue;
        if (!isHexDigit(text.at(i)))
            return false;
        digits += static_cast<char>(text.at(i).unicode());
    }
    bytes = QByteArray::fromHex(digits);
    return digits.size() % 2 == 0;
}

QString byteWords(const QByteArray &bytes)
{
    const QByteArray digits = bytes.toHex().toUpper();
    QString text;
    for (int i = 0; i < digits.size(); i += 2)
        text += QLatin1Char(' ') + QString::fromLatin1(digits.mid(i, 2));
    return text;
}

QString parseCommand(const QString &text, CommunicatorCommand &command)
{
    const QString afterKind = afterFirstWord(text);
    bool isNumber = false;
    command.count = firstWord(afterKind).toInt(&isNumber);
    command.address = afterFirstWord(afterKind);
    if (!parseKind(firstWord(text), command.dataType))
        return QString::fromLatin1("\"%1\" is no kind of item").arg(firstWord(text));
    return isNumber ? QString() : QLatin1String("expected a kind, a count and an address");
}

QString commandWords(const CommunicatorCommand &command)
{
    return QString::fromLatin1("%1 %2 ").arg(kindName(command.dataType)).arg(command.count) + command.address;
}

} // namespace kit
