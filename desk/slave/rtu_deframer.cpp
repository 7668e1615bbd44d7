#include "desk/slave/rtu_deframer.h"

#include "desk/wire/rtu_frame.h"

#include <utility>

namespace
{

const int NoFrame = 0;
const int Incomplete = -1;

// 0 and those with the exception bit are no functions of requests.
bool isRequestFunction(int function)
{
    return function > 0 && function <= modbus::MaxFunction;
}

// A function whose form is not known here: the CRC alone says where the request ends.
int sizeByCrc(const QByteArray &bytes)
{
    const int max = qMin(int(bytes.size()), modbus::MaxFrameSize);
    for (int size = modbus::MinFrameSize; size <= max; ++size) {
        if (hasGoodCrc(bytes.left(size)))
            return size;
    }
    return bytes.size() < modbus::MaxFrameSize ? Incomplete : NoFrame;
}

bool hasKnownForm(const QByteArray &bytes)
{
    return requestSize(bytes) != SizeUnknown;
}

} // namespace

QByteArray RtuDeframer::next()
{
    while (!m_buffer.isEmpty()) {
        const int size = frameSizeAt(0);
        if (size > 0) {
            QByteArray frame = m_buffer.left(size);
            m_buffer.remove(0, size);
            return frame;
        }
        if (size == NoFrame) {
            drop(1);
            continue;
        }
        const int start = frameWithinReach();
        if (start == NoFrame)
            break;
        drop(start);
    }
    return QByteArray();
}

int RtuDeframer::frameSizeAt(int position) const
{
    const QByteArray bytes = m_buffer.mid(position, modbus::MaxFrameSize);
    if (bytes.size() < 2)
        return Incomplete;
    if (!isRequestFunction(functionOf(bytes)))
        return NoFrame;
    const int size = requestSize(bytes);
    if (size == SizeUnknown)
        return sizeByCrc(bytes);
    if (size == SizeNeedsMoreBytes || size > bytes.size())
        return size > modbus::MaxFrameSize ? NoFrame : Incomplete;
    return hasGoodCrc(bytes.left(size)) ? size : NoFrame;
}

// Where a whole request of a known form begins after an incomplete one whose form is not known: that one was
// noise. A request of a known form, on the other hand, may hold such bytes as data and is waited for.
int RtuDeframer::frameWithinReach() const
{
    if (hasKnownForm(m_buffer))
        return NoFrame;
    for (int start = 1; start + modbus::MinFrameSize <= m_buffer.size(); ++start) {
        if (hasKnownForm(m_buffer.mid(start, modbus::ShortFrameSize)) && frameSizeAt(start) > 0)
            return start;
    }
    return NoFrame;
}

void RtuDeframer::giveUp()
{
    if (!m_buffer.isEmpty())
        drop(1);
}

void RtuDeframer::drop(int size)
{
    m_dropped += m_buffer.left(size);
    m_buffer.remove(0, size);
}

QByteArray RtuDeframer::takeDropped()
{
    return std::exchange(m_dropped, QByteArray());
}
