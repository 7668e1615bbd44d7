#include "fuzz/support/format_text.h"

#include <cstring>
#include <limits>

namespace fuzz
{

namespace
{

const int MaxSize = 4096;

int widthOf(char letter)
{
    return std::strchr("cCxX", letter)     ? 1
           : std::strchr("sSvn", letter)   ? 2
           : std::strchr("iIlLVN", letter) ? 4
                                           : 0;
}

} // namespace

Format parseFormat(const QByteArray &text)
{
    Format format;
    for (int i = 0; i < text.size() && !format.hasError() && !format.isTooLarge; ++i) {
        const bool counted = text.at(i) >= '0' && text.at(i) <= '9';
        double count = counted ? 0 : 1;
        for (; i < text.size() && text.at(i) >= '0' && text.at(i) <= '9'; ++i)
            count = count * 10 + (text.at(i) - '0');
        const char letter = i < text.size() ? text.at(i) : '\0';
        const int width = letter == '\0' ? 0 : widthOf(letter);
        const bool isGap = width != 0 && std::strchr("xX", letter);
        const bool isCountable = width != 0 && (isGap || (std::strchr("cCvnVN", letter) && count > 0));
        const bool isBeyond = format.size + count * width > std::numeric_limits<int>::max();
        format.countedError = counted && (!isCountable || isBeyond);
        format.letterError = !counted && width == 0;
        format.isTooLarge = !format.hasError() && format.size + count * width > MaxSize;
        if (format.hasError() || format.isTooLarge)
            break;
        const int size = static_cast<int>(count) * width;
        format.items.append({letter, counted, format.size, size, width});
        format.size += size;
    }
    return format;
}

} // namespace fuzz
