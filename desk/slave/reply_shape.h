#pragma once

#include "desk/slave/fault_plan.h"

#include <QByteArray>
#include <QList>

/// What goes out for one request, and how.
struct ReplyShape {
    enum Ending { KeepOpen, ResetConnection, CloseConnection, GoDead };

    /// Empty: nothing is sent. More than one: each a segment of its own.
    QList<QByteArray> segments;
    int delayMs = 0;
    /// Not sent here, but by the slave, so much later.
    int lateMs = 0;
    int segmentGapMs = 0;
    /// Keep the bytes and send them in front of the next reply.
    bool isHeldBack = false;
    Ending ending = KeepOpen;

    QByteArray bytes() const;
};

/// What \a fault makes of the right \a reply to \a request. \a previous is the reply before it on the
/// connection. Where the fault leaves its value open it is drawn from \a plan.
ReplyShape shapeReply(const Fault &fault, const QByteArray &request, const QByteArray &reply,
                      const QByteArray &previous, FaultPlan &plan);
