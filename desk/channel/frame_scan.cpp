#include "desk/channel/frame_scan.h"

#include "desk/wire/rtu_frame.h"
#include "drivers/qt/qt_lines.h"

namespace
{

int checkedSize(const QByteArray &bytes, int size)
{
    if (size == SizeUnknown)
        return NoFrame;
    if (size == SizeNeedsMoreBytes || size > bytes.size())
        return PerhapsFrame;
    return hasGoodCrc(QByteArray::fromRawData(bytes.constData(), size)) ? size : NoFrame;
}

} // namespace

int frameSizeAt(const QByteArray &stream, int start)
{
    const QByteArray bytes = QByteArray::fromRawData(stream.constData() + start, stream.size() - start);
    const int reply = checkedSize(bytes, replySize(bytes));
    if (reply > 0)
        return reply;
    const int request = checkedSize(bytes, requestSize(bytes));
    return request == NoFrame ? reply : request;
}

QList<QByteArray> takeFrames(QByteArray &stream, QByteArray &noise)
{
    QList<QByteArray> frames;
    int taken = 0;
    int undecided = -1;
    for (int start = 0; start < stream.size();) {
        const int size = frameSizeAt(stream, start);
        if (size > 0) {
            noise += stream.mid(taken, start - taken);
            frames.append(stream.mid(start, size));
            taken = start + size;
            undecided = -1;
        } else if (size == PerhapsFrame && undecided < 0) {
            undecided = start;
        }
        start += size > 0 ? size : 1;
    }
    const int left = undecided < 0 ? sizeOf(stream) : undecided;
    noise += stream.mid(taken, left - taken);
    stream.remove(0, left);
    return frames;
}
