// Format strings of the packers, each with arguments that match it, in memory of exactly the size that it
// takes.

#include "drivers/tools/format_pack.h"
#include "fuzz/support/check.h"
#include "fuzz/support/format_text.h"
#include "fuzz/support/input.h"

#include <QVector>

#include <algorithm>
#include <cstring>
#include <vector>

using namespace fuzz;

namespace
{

const int MaxArguments = 5;
const unsigned char Untouched = 0xA5;

struct Argument {
    unsigned char *array;
    int value;
};

// Calls a variadic function with arguments whose types are known only now.
template <int Left, typename Function, typename... Given>
auto callWith(const QVector<Argument> &arguments, const Function &function, Given... given)
{
    if constexpr (Left > 0) {
        const int next = sizeof...(given);
        if (next < arguments.size())
            return arguments.at(next).array != nullptr
                       ? callWith<Left - 1>(arguments, function, given..., arguments.at(next).array)
                       : callWith<Left - 1>(arguments, function, given..., arguments.at(next).value);
    }
    return function(given...);
}

using Memory = std::vector<unsigned char>;

Memory exactly(int size, unsigned char filler)
{
    Memory memory;
    memory.reserve(static_cast<size_t>(qMax(size, 1)));
    memory.resize(static_cast<size_t>(size), filler);
    return memory;
}

// An item's bytes in the order of the other side.
void convert(const Item &item, const Memory &host, Memory &wire)
{
    const bool isReversed = item.letter == 'n' || item.letter == 'N';
    auto to = wire.begin() + item.start;
    for (auto from = host.begin(); from != host.end(); from += item.width, to += item.width) {
        std::copy_n(from, item.width, to);
        if (isReversed)
            std::reverse(to, to + item.width);
    }
}

struct Case {
    Format format;
    // What each item with an argument holds on the host's side, and the whole on the wire.
    std::vector<Memory> host;
    Memory wire;
    QVector<Argument> packArguments;
};

Case makeCase(const Format &format, Input &input)
{
    Case made{format, {}, exactly(format.size, Untouched), {}};
    for (const Item &item : format.items) {
        if (item.isGap()) {
            std::fill_n(made.wire.begin() + item.start, item.size, item.letter == 'x' ? 0 : Untouched);
            continue;
        }
        Memory host = exactly(item.size, 0);
        for (unsigned char &byte : host)
            byte = input.byte();
        convert(item, host, made.wire);
        Argument argument = {nullptr, 0x5A5A5A5A};
        if (!item.counted)
            std::memcpy(&argument.value, host.data(), host.size());
        made.host.push_back(std::move(host));
        if (item.counted)
            argument.array = made.host.back().data();
        made.packArguments.append(argument);
    }
    return made;
}

void checkPack(const Case &made, const char *text)
{
    Memory out = exactly(made.format.size, Untouched);
    const int result = callWith<MaxArguments>(
        made.packArguments, [&](auto... given) { return DataPack(out.data(), text, given...); });
    FUZZ_CHECK(result == (made.format.countedError ? -1 : made.format.letterError ? 0 : made.format.size));
    FUZZ_CHECK(out == made.wire);
}

void checkByteArrayPack(const Case &made, const char *text)
{
    QByteArray expected(reinterpret_cast<const char *>(made.wire.data()), made.format.size);
    for (const Item &item : made.format.items) {
        if (item.isGap() && item.counted)
            expected.clear();
        if (item.letter == 'X' && !expected.isEmpty())
            expected[item.start] = '\0';
    }
    const QByteArray result = callWith<MaxArguments>(
        made.packArguments, [&](auto... given) { return ByteArrayPack(text, given...); });
    FUZZ_CHECK(result == (made.format.hasError() ? QByteArray() : expected));
}

void checkUnpack(const Case &made, const char *text)
{
    std::vector<Memory> host;
    QVector<Argument> arguments;
    for (const Memory &packed : made.host) {
        host.push_back(exactly(static_cast<int>(packed.size()), Untouched));
        arguments.append({host.back().data(), 0});
    }
    const int result = callWith<MaxArguments>(
        arguments, [&](auto... given) { return DataUnpack(made.wire.data(), text, given...); });
    FUZZ_CHECK(result == (made.format.hasError() ? -1 : made.format.size));
    FUZZ_CHECK(host == made.host);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    QByteArray text = input.bytes(input.byte());
    text.truncate(static_cast<int>(qstrnlen(text.constData(), static_cast<uint>(text.size()))));
    const Format format = parseFormat(text);
    const auto arguments = std::count_if(format.items.begin(), format.items.end(),
                                         [](const Item &item) { return !item.isGap(); });
    if (format.isTooLarge || arguments > MaxArguments)
        return 0;

    const Case made = makeCase(format, input);
    checkPack(made, text.constData());
    checkByteArrayPack(made, text.constData());
    checkUnpack(made, text.constData());
    return 0;
}
