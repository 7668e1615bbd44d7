#include "drivers/tools/tx_package.h"

#include "drivers/qt/qt_lines.h"
#include "drivers/tools/byte_order.h"
#include "drivers/tools/checksum.h"
#include "drivers/tools/diagnostics.h"

#include <limits>

namespace
{

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

unsigned char sumOf(const QByteArray &bytes)
{
    return UInt8CheckSum(bytesOf(bytes), sizeOf(bytes));
}

qint64 sumOfFirst(int count, const QList<int> &sizes)
{
    qint64 sum = 0;
    for (int i = 0; i < count; ++i)
        sum += sizes.at(i);
    return sum;
}

} // namespace

bool TxPackage::appendSection(const QByteArray &bytes)
{
    sectionSizes.append(sizeOf(bytes));
    buffer.append(bytes);
    return true;
}

bool TxPackage::appendByte(unsigned char value)
{
    return appendSection(QByteArray(1, static_cast<char>(value)));
}

bool TxPackage::appendWord(unsigned short value)
{
    return appendSection(wordToByteArray(value));
}

bool TxPackage::appendDWord(unsigned int value)
{
    return appendSection(intToByteArray(static_cast<int>(value)));
}

bool TxPackage::appendString(const QString &text)
{
    return appendSection(text.toLatin1());
}

bool TxPackage::appendByte2Ascii(unsigned char value)
{
    return appendSection(QByteArray(1, static_cast<char>(value)).toHex().toUpper());
}

bool TxPackage::appendLRCByte()
{
    return appendByte(sumOf(buffer));
}

bool TxPackage::appendLRCAscii()
{
    return appendByte2Ascii(sumOf(buffer));
}

bool TxPackage::appendFCSAscii(int /*unused*/)
{
    return appendByte2Ascii(static_cast<unsigned char>(calculateFCS(this, 0)));
}

int TxPackage::calculateFCS(const TxPackage *package, int excludeTail)
{
    return XorUInt8CheckSum(bytesOf(package->buffer), sizeOf(package->buffer) - qMax(excludeTail, 0));
}

bool TxPackage::setData(const QByteArray &bytes)
{
    buffer = bytes;
    return true;
}

bool TxPackage::setData(const char *bytes, int length)
{
    return setData(QByteArray(bytes, qMax(length, 0)));
}

void TxPackage::setSectionSize(const QList<int> &sizes)
{
    sectionSizes = sizes;
    const qint64 sum = sumOfFirst(sizeOf(sizes), sizes);
    const int size = sum < 0 || sum > std::numeric_limits<int>::max() ? 0 : static_cast<int>(sum);
    buffer = buffer.leftJustified(size, '\0', true);
}

void TxPackage::clearAll()
{
    buffer.clear();
    sectionSizes.clear();
}

char *TxPackage::data()
{
    return buffer.data();
}

QByteArray TxPackage::byteArrayData() const
{
    return buffer;
}

int TxPackage::totalSize() const
{
    return sizeOf(buffer);
}

int TxPackage::numberOfSections() const
{
    return sizeOf(sectionSizes);
}

bool TxPackage::validSectionNumber(int i) const
{
    return i >= 0 && i < sectionSizes.size();
}

int TxPackage::sectionStartIndex(int i) const
{
    return validSectionNumber(i) ? boundedInt(sumOfFirst(i, sectionSizes)) : -1;
}

// The section whose first byte is the size of section `i`, -1 when there is no such section.
int TxPackage::sectionThatSizes(int i) const
{
    const int stored = sectionSizes.at(i);
    return stored > -sectionSizes.size() ? -stored : -1;
}

int TxPackage::sectionSize(int i) const
{
    // Down to a section with a size of its own, and from there back up.
    QList<int> waiting;
    while (validSectionNumber(i) && sectionSizes.at(i) < 0) {
        if (waiting.size() == sectionSizes.size())
            return 0;
        waiting.append(i);
        i = sectionThatSizes(i);
    }
    int size = validSectionNumber(i) ? sectionSizes.at(i) : 0;
    while (!waiting.isEmpty()) {
        size = arrayToInt(bytesFrom(sectionStartIndex(i), size));
        i = waiting.takeLast();
    }
    return size;
}

QByteArray TxPackage::dataAt(int i) const
{
    return bytesFrom(sectionStartIndex(i), sectionSize(i));
}

int TxPackage::arrayToInt(const QByteArray &bytes)
{
    return bytes.isEmpty() ? 0 : bytesOf(bytes)[0];
}

QString TxPackage::toString() const
{
    return dumpByteArray(buffer);
}

// The bytes of the frame among `size` of them from `start` on, which may lie before it.
QByteArray TxPackage::bytesFrom(int start, int size) const
{
    const int begin = qMax(start, 0);
    const qint64 end = qMin(qint64(start) + size, qint64(buffer.size()));
    return begin < end ? buffer.mid(begin, static_cast<int>(end) - begin) : QByteArray();
}
