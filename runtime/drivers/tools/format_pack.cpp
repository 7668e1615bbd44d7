#include "drivers/tools/format_pack.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{

const int MaxInt = std::numeric_limits<int>::max();

// Bytes of one item; 0 when the letter is none.
int widthOf(char letter)
{
    switch (letter) {
    case 'c':
    case 'C':
    case 'x':
    case 'X': return 1;
    case 's':
    case 'S':
    case 'v':
    case 'n': return 2;
    case 'i':
    case 'I':
    case 'l':
    case 'L':
    case 'V':
    case 'N': return 4;
    default: return 0;
    }
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Walks through the items of a format.
class FormatReader
{
public:
    explicit FormatReader(const char *formatText)
        : format(formatText), letter('\0'), counted(false), failed(false), count(0), begin(0), end(0)
    {
    }

    // Goes to the next item; false at the end and at an error.
    bool next()
    {
        if (*format == '\0')
            return false;
        counted = isDigit(*format);
        count = counted ? readCount() : 1;
        letter = *format;
        failed = !isValid();
        if (failed)
            return false;
        ++format;
        begin = end;
        end += size();
        return true;
    }

    bool hasFailed() const { return failed; }
    bool isCounted() const { return counted; }
    bool isGap() const { return letter == 'x' || letter == 'X'; }
    bool isZeroGap() const { return letter == 'x'; }
    // Where the item lies, and where those seen so far end.
    int beginOffset() const { return begin; }
    int endOffset() const { return end; }
    int size() const { return widthOf(letter) * static_cast<int>(count); }

    // Copies the item between wire and host; the two may overlap.
    void copy(unsigned char *target, const unsigned char *source) const
    {
        std::memmove(target, source, static_cast<size_t>(size()));
        if (letter != 'n' && letter != 'N')
            return;
        const int width = widthOf(letter);
        for (unsigned char *element = target; element != target + size(); element += width)
            std::reverse(element, element + width);
    }

private:
    // A count that no int holds comes out as one that no item can have.
    qint64 readCount()
    {
        qint64 value = 0;
        for (; isDigit(*format); ++format)
            value = qMin(value * 10 + (*format - '0'), qint64(MaxInt) + 1);
        return value;
    }

    bool isValid() const
    {
        const int width = widthOf(letter);
        if (width == 0 || count > (MaxInt - end) / width)
            return false;
        return !counted || isGap() || (count > 0 && std::strchr("cCvnVN", letter) != nullptr);
    }

    const char *format;
    char letter;
    bool counted;
    bool failed;
    qint64 count;
    int begin;
    int end;
};

// A copy of the caller's arguments, taken one by one.
class Arguments
{
public:
    explicit Arguments(va_list args) { va_copy(list, args); }
    ~Arguments() { va_end(list); }
    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    int nextValue() { return va_arg(list, int); }
    unsigned char *nextPointer() { return va_arg(list, unsigned char *); }

private:
    va_list list;
};

void packItem(unsigned char *out, const FormatReader &item, Arguments &arguments)
{
    if (item.isZeroGap()) {
        std::memset(out, 0, static_cast<size_t>(item.size()));
    } else if (item.isGap()) {
        return;
    } else if (item.isCounted()) {
        item.copy(out, arguments.nextPointer());
    } else {
        // Of an int the item's low bytes come first.
        const int value = arguments.nextValue();
        item.copy(out, reinterpret_cast<const unsigned char *>(&value));
    }
}

} // namespace

int VDataPack(unsigned char *out, const char *format, va_list args)
{
    Arguments arguments(args);
    FormatReader item(format);
    while (item.next())
        packItem(out + item.beginOffset(), item, arguments);
    if (!item.hasFailed())
        return item.endOffset();
    return item.isCounted() ? -1 : 0;
}

QByteArray VByteArrayPack(const char *format, va_list args)
{
    FormatReader item(format);
    while (item.next()) {
        if (item.isCounted() && item.isGap())
            return QByteArray();
    }
    if (item.hasFailed())
        return QByteArray();
    QByteArray bytes(item.endOffset(), '\0');
    VDataPack(reinterpret_cast<unsigned char *>(bytes.data()), format, args);
    return bytes;
}

int VDataUnpack(const unsigned char *in, const char *format, va_list args)
{
    Arguments arguments(args);
    FormatReader item(format);
    while (item.next()) {
        if (!item.isGap())
            item.copy(arguments.nextPointer(), in + item.beginOffset());
    }
    return item.hasFailed() ? -1 : item.endOffset();
}

int DataPack(unsigned char *out, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = VDataPack(out, format, args);
    va_end(args);
    return result;
}

QByteArray ByteArrayPack(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    QByteArray result = VByteArrayPack(format, args);
    va_end(args);
    return result;
}

int DataUnpack(const unsigned char *in, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = VDataUnpack(in, format, args);
    va_end(args);
    return result;
}
