// Sections of the frame builder: appends, replaced data and lists of section sizes, negative and circular
// ones among them, against a model.

#include "drivers/tools/tx_package.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "fuzz/support/section_model.h"

#include <limits>

using namespace fuzz;

namespace
{

const int MaxSections = 40;
const int MaxFrame = 1 << 16;

QByteArray hex(int value)
{
    return QString::asprintf("%02X", value).toLatin1();
}

QList<int> takeSizes(Input &input)
{
    QList<int> sizes;
    for (int left = input.byte() % MaxSections; left > 0; --left) {
        const int small = input.signedByte();
        sizes += small != -128 ? small : static_cast<int>(input.doubleWord());
    }
    return sizes;
}

void setSizes(TxPackage &package, SectionModel &model, const QList<int> &sizes)
{
    qint64 sum = 0;
    for (const int size : sizes)
        sum += size;
    if (sum > MaxFrame && sum <= std::numeric_limits<int>::max())
        return;
    package.setSectionSize(sizes);
    model.sizes = sizes;
    model.bytes =
        model.bytes.leftJustified(sum < 0 || sum > MaxFrame ? 0 : static_cast<int>(sum), '\0', true);
}

QByteArray littleEndian(quint32 value, int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> 8 * i & 0xFF);
    return bytes;
}

void appendNumber(TxPackage &package, SectionModel &model, Input &input)
{
    const quint32 value = input.doubleWord();
    switch (value % 4) {
    case 0: package.appendByte(static_cast<quint8>(value)); return model.append(littleEndian(value, 1));
    case 1: package.appendWord(static_cast<quint16>(value)); return model.append(littleEndian(value, 2));
    case 2: package.appendDWord(value); return model.append(littleEndian(value, 4));
    default:
        package.appendByte2Ascii(static_cast<quint8>(value));
        return model.append(hex(static_cast<quint8>(value)));
    }
}

void applyStep(TxPackage &package, SectionModel &model, Input &input)
{
    const QByteArray &bytes = model.bytes;
    switch (input.byte() % 10) {
    case 0: return appendNumber(package, model, input);
    case 1: {
        const QByteArray section = input.bytes(input.byte());
        FUZZ_CHECK(package.appendSection(section));
        return model.append(section);
    }
    case 2: {
        const QString text = QString::fromUtf8(input.bytes(input.byte()));
        FUZZ_CHECK(package.appendString(text));
        return model.append(text.toLatin1());
    }
    case 3:
        FUZZ_CHECK(package.appendLRCByte());
        return model.append(littleEndian(quint32(model.sumOfBytes()), 1));
    case 4: FUZZ_CHECK(package.appendLRCAscii()); return model.append(hex(model.sumOfBytes()));
    case 5:
        FUZZ_CHECK(package.appendFCSAscii(input.byte()));
        return model.append(hex(model.xorOfBytes(bytes.size())));
    case 6:
        model.bytes = input.bytes(input.byte());
        FUZZ_CHECK(package.setData(bytes));
        return;
    case 7: {
        const QByteArray replaced = input.bytes(input.byte());
        const int length = input.signedByte() % (replaced.size() + 1);
        FUZZ_CHECK(package.setData(replaced.constData(), length));
        model.bytes = replaced.left(qMax(length, 0));
        return;
    }
    case 8: return setSizes(package, model, takeSizes(input));
    default:
        package.clearAll();
        model = SectionModel();
        return;
    }
}

void checkSections(const TxPackage &package, const SectionModel &model)
{
    FUZZ_CHECK(package.byteArrayData() == model.bytes && package.totalSize() == model.bytes.size());
    FUZZ_CHECK(package.numberOfSections() == model.sizes.size());
    for (int i = -2; i < model.sizes.size() + 2; ++i) {
        const bool isThere = i >= 0 && i < model.sizes.size();
        FUZZ_CHECK(package.validSectionNumber(i) == isThere);
        FUZZ_CHECK(package.sectionStartIndex(i) == (isThere ? model.sum(i) : -1));
        FUZZ_CHECK(package.sectionSize(i) == (isThere ? model.sizeOf(i) : 0));
        FUZZ_CHECK(package.dataAt(i) == model.section(i));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    TxPackage package;
    SectionModel model;
    while (!input.isEmpty() && model.sizes.size() < MaxSections) {
        applyStep(package, model, input);
        checkSections(package, model);
    }
    const int tail = input.byte() % (model.bytes.size() + 1);
    FUZZ_CHECK(TxPackage::calculateFCS(&package, tail) == model.xorOfBytes(model.bytes.size() - tail));
    FUZZ_CHECK(package.toString().startsWith(QLatin1Char('(')));
    return 0;
}
