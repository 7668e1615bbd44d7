#include "line_frame.h"

#include "drivers/qt_lines.h"
#include "drivers/tools.h"

namespace
{

const char FrameStart = ':';
const char FrameEnd = '\r';

TxPackage begunFrame(unsigned char station, char kind)
{
    TxPackage frame;
    frame.appendByte(FrameStart);
    frame.appendByte2Ascii(station);
    frame.appendByte(static_cast<unsigned char>(kind));
    return frame;
}

void appendWord2Ascii(TxPackage &frame, unsigned int word)
{
    frame.appendByte2Ascii(static_cast<unsigned char>(word >> 8 & 0xFF));
    frame.appendByte2Ascii(static_cast<unsigned char>(word & 0xFF));
}

QByteArray finished(TxPackage &frame)
{
    frame.appendFCSAscii(0);
    frame.appendByte(FrameEnd);
    return frame.byteArrayData();
}

// A damaged digit may be one of lower case, which no device sends.
QByteArray digitsOf(int check)
{
    return QByteArray::number(check, 16).rightJustified(2, '0').toUpper();
}

unsigned char byteOf(const QByteArray &digits)
{
    return static_cast<unsigned char>(HexToUInt(digits.constData(), sizeOf(digits)));
}

} // namespace

QByteArray lineReadRequest(unsigned char station, unsigned short first, unsigned char count)
{
    TxPackage frame = begunFrame(station, LineRead);
    appendWord2Ascii(frame, first);
    frame.appendByte2Ascii(count);
    return finished(frame);
}

QByteArray lineWriteRequest(unsigned char station, unsigned short first, const QByteArray &values)
{
    const QByteArray wireOrder = toBigEndianUShortArray(values);
    TxPackage frame = begunFrame(station, LineWrite);
    appendWord2Ascii(frame, first);
    frame.appendByte2Ascii(
        static_cast<unsigned char>(NumOfBytesToNumOfWords(static_cast<unsigned int>(values.size()))));
    frame.appendSection(wireOrder.toHex().toUpper());
    return finished(frame);
}

LineReply parsedLineReply(const QByteArray &bytes)
{
    LineReply reply = {false, 0, '\0', QByteArray()};
    const int digits = sizeOf(bytes) - LineHeadSize - LineTailSize;
    if (digits < 0)
        return reply;

    TxPackage frame;
    frame.setSectionSize(EmptyPackageSizeList() << 1 << 2 << 1 << digits << 2 << 1);
    frame.setData(bytes);
    reply.isIntact = frame.dataAt(0).at(0) == FrameStart && frame.dataAt(5).at(0) == FrameEnd &&
                     frame.dataAt(4) == digitsOf(TxPackage::calculateFCS(&frame, LineTailSize));
    if (!reply.isIntact)
        return reply;
    reply.station = byteOf(frame.dataAt(1));
    reply.kind = frame.dataAt(2).at(0);
    reply.digits = frame.dataAt(3);
    return reply;
}

QByteArray lineValues(const QByteArray &digits)
{
    QByteArray values;
    for (int i = 0; i + LineValueDigits <= digits.size(); i += LineValueDigits)
        values +=
            wordToByteArray(static_cast<unsigned short>(HexToUInt(digits.constData() + i, LineValueDigits)));
    return values;
}
