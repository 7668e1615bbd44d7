#pragma once

#include "desk/link/command_record.h"
#include "desk/wire/rtu_frame.h"

/// What tests of records, counts and failures are made of.

/// Bytes in hexadecimal digits, and their CRC.
inline QByteArray frame(const char *hex)
{
    return withCrc(QByteArray::fromHex(hex));
}

inline QByteArray damaged(QByteArray bytes)
{
    bytes[bytes.size() - 1] = static_cast<char>(bytes.at(bytes.size() - 1) ^ 1);
    return bytes;
}

/// A read of one register of station 1, and what it holds.
const QByteArray readOne = frame("010300000001");
const QByteArray goodReply = frame("0103020007");

/// A command of station 1 that lasts from 1000 to 5000, event by event.
class RecordedCommand
{
public:
    RecordedCommand() { record.begin(1, 1000); }
    RecordedCommand &opens() { return with(ChannelEvent::Opened); }
    RecordedCommand &sends(const QByteArray &bytes = readOne) { return with(ChannelEvent::Sent, bytes); }
    RecordedCommand &gets(const QByteArray &bytes) { return with(ChannelEvent::Received, bytes); }
    RecordedCommand &with(ChannelEvent event, const QByteArray &bytes = {})
    {
        record.add(event, bytes, now += 100);
        return *this;
    }
    CommandRecord ended(bool isGivenUp = false)
    {
        record.end(5000, isGivenUp);
        return record;
    }

private:
    CommandRecord record;
    qint64 now = 1000;
};
