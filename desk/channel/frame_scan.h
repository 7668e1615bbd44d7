#pragma once

#include <QByteArray>
#include <QList>

/// Whole frames in a stream of bytes, however it was cut into segments and whatever lies between them.

/// Answers of frameSizeAt() that are no size.
const int NoFrame = 0;
const int PerhapsFrame = -1;

/// How long the frame is that begins at \a start: a request or a reply with a good CRC, of a function known
/// to rtu_frame.h, or an exception. NoFrame when none does; PerhapsFrame while more bytes may make one.
int frameSizeAt(const QByteArray &stream, int start);

/// Takes all whole frames out of \a stream, and what lies before them, which \a noise gets; leaves what may
/// still become a frame.
QList<QByteArray> takeFrames(QByteArray &stream, QByteArray &noise);
