#pragma once

#include "desk/channel/line.h"
#include "desk/channel/reply_finder.h"
#include "desk/wire/protocol.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// What an examination has seen. Times are microseconds since it began.

/// Bytes that came together.
struct Segment {
    qint64 at = 0;
    QByteArray bytes;
};

/// A connection, or an attempt at one.
struct Connection {
    qint64 beganAt = 0;
    qint64 openedAt = -1;  ///< -1: it was not made
    QString error;         ///< why
    qint64 endedAt = -1;   ///< by the other side; -1: it was not
    bool isReset = false;  ///< and cut off instead of closed
    qint64 quietSince = 0; ///< before its end: since when nothing had been sent or had come
    bool wasAsked = false; ///< anything
};

/// Why something was sent.
enum class Purpose {
    Contact,  ///< whether the station answers
    Service,  ///< who is there, where nobody answers as an RTU slave
    Station,  ///< which other stations answer
    Sample,   ///< how long, how often and how well the station answers
    Paused,   ///< whether it answers after a pause
    Prompt,   ///< whether it answers without
    Area,     ///< what can be read
    Value,    ///< what stands there
    Length,   ///< how much it takes at once
    Function, ///< whether it knows a function
    Write     ///< the same, and writes
};

enum class AskResult {
    Answered,     ///< with the reply to the request
    Refused,      ///< with an exception
    OtherLength,  ///< with a whole reply to another request
    Damaged,      ///< with a reply whose CRC is wrong, or a part of one
    OtherStation, ///< by another station
    Noise,        ///< something came, and no frame of this exchange
    Echo,         ///< nothing came but the request
    Silent,       ///< nothing came
    Ended,        ///< the other side ended the connection
    Unsent        ///< there was no connection
};

/// A request and what came of it.
struct Asked {
    Purpose purpose = Purpose::Contact;
    QByteArray request;
    int connection = 0;
    qint64 sentAt = 0;
    qint64 wait = 0; ///< how long a reply was waited for
    qint64 rest = 0; ///< since the line had brought or got anything
    std::vector<Segment> segments;
    AskResult result = AskResult::Silent;
    QByteArray reply;      ///< the whole frame, or what there is of one
    qint64 firstAt = -1;   ///< of the reply
    qint64 repliedAt = -1; ///< its last byte; also when that came after the wait
    qint64 longestGap = 0; ///< within the reply
    bool isEchoed = false;
    bool isLate = false; ///< the reply came after the wait

    int station() const;
    int function() const;
    QByteArray received() const;
    /// The code of an exception; 0 when it is none.
    int exception() const;
    /// Whether a frame of the station came that answers a request such as this.
    bool isAnswer() const;
    /// Whether a gateway says that it cannot reach the station.
    bool isStationAbsent() const;
    /// From the first byte of the request to the last one of the reply; -1 without one.
    qint64 latency() const { return repliedAt < 0 ? -1 : repliedAt - sentAt; }
};

/// What came and answers nothing.
struct Stray {
    qint64 at = 0;
    int connection = 0;
    int asked = -1; ///< the request that was waited for meanwhile; -1 for none
    SkippedPart::Kind kind = SkippedPart::Noise;
    QByteArray bytes;     ///< one frame, or noise that came together
    bool isFirst = false; ///< on its connection
};

struct Observations {
    int station = 1; ///< that is to be examined
    std::vector<Connection> connections;
    std::vector<Asked> asked;
    std::vector<Stray> strays;
    qint64 listened = 0;      ///< to a line at rest, altogether
    int working = -1;         ///< a station that answers; -1 while none is known
    qint64 pauseNeeded = 0;   ///< between a reply and the next request
    bool isOutOfTime = false; ///< something was not asked, since that would have taken too long

    bool isEchoing() const;
    /// Requests with the purpose, in their order.
    std::vector<const Asked *> askedFor(Purpose purpose) const;
    /// Those that the working station answered, very long ones left out.
    std::vector<const Asked *> timed() const;
    /// The first request that found something readable; nothing when there was none.
    const Asked *firstRead() const;
    /// A read of the area that the working station answered, and the last one that it refused; nothing when
    /// there was none.
    const Asked *readOf(Area area) const;
    const Asked *refusalOf(Area area) const;
    /// Whether any frame came that answers a request of RTU.
    bool hasFrames() const;
    /// Whether the bytes are none of a reply, however damaged.
    bool isPacket(const QByteArray &bytes) const;
    /// Whether a reply came whose bytes are not what was sent. What also comes when nothing is asked is none.
    bool isSpoilt(const Asked &one) const;
    /// Whether the noise is what is left of a spoilt reply.
    bool isOfReply(const Stray &noise) const;
    /// Whether whole frames came while nothing was asked.
    bool hasTraffic() const;
};

/// What is read and how: a request of function 1 to 4, with its CRC.
QByteArray readRequest(int station, Area area, int offset, int count);
int readFunction(Area area);
/// The area that a function reads.
Area areaOfFunction(int function);
