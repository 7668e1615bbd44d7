#pragma once

#include <QByteArray>
#include <QString>

/// What frames mean, for people.

enum class FrameRole { Request, Reply };

/// What a frame means, on one line. Any bytes will do. With the \a request that it answers, a reply is
/// described with its addresses and compared with what was asked.
QString describeFrame(FrameRole role, const QByteArray &frame, const QByteArray &request = QByteArray());

/// "illegal data address" for 2; "unknown" for a code that the protocol does not have.
QString exceptionName(int code);
/// "0x02", as in the driver's texts.
QString exceptionText(int code);
