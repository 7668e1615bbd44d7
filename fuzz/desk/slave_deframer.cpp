// A stream of bytes that holds requests: whatever a deframer is given, it hands on each byte once, in frames
// or as dropped, and finds the same frames however the stream was cut.

#include "desk/slave/rtu_deframer.h"
#include "desk/wire/rtu_frame.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

#include <vector>

namespace
{

struct Found {
    std::vector<QByteArray> frames;
    int dropped = 0;
};

void take(RtuDeframer &deframer, Found &found)
{
    for (QByteArray frame = deframer.next(); !frame.isEmpty(); frame = deframer.next())
        found.frames.push_back(frame);
    found.dropped += static_cast<int>(deframer.takeDropped().size());
}

// In pieces of sizes from the input; the line is silent at the end.
Found foundInPieces(const QByteArray &stream, const QByteArray &sizes)
{
    RtuDeframer deframer;
    Found found;
    int position = 0;
    for (int i = 0; position < stream.size(); ++i) {
        const int size = i < sizes.size() ? static_cast<unsigned char>(sizes.at(i)) + 1 : int(stream.size());
        deframer.add(stream.mid(position, size));
        position += size;
        take(deframer, found);
    }
    for (int i = 0; i <= stream.size() && deframer.isPending(); ++i) {
        deframer.giveUp();
        take(deframer, found);
    }
    FUZZ_CHECK(!deframer.isPending());
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const QByteArray sizes = input.bytes(input.byte() % 32);
    const QByteArray stream = input.rest();

    const Found whole = foundInPieces(stream, QByteArray());
    int taken = whole.dropped;
    for (const QByteArray &frame : whole.frames) {
        FUZZ_CHECK(hasGoodCrc(frame));
        FUZZ_CHECK(stream.contains(frame));
        taken += static_cast<int>(frame.size());
    }
    FUZZ_CHECK(taken == stream.size());
    FUZZ_CHECK(foundInPieces(stream, sizes).frames == whole.frames);
    return 0;
}
