#pragma once

#include "desk/link/command_record.h"

#include <QString>

/// What the driver's error texts mean, decided in one place for every program.

enum class FailureKind {
    CannotConnect,   ///< no connection to the slave
    ConnectionEnded, ///< the other side closed or reset it before the reply was whole
    SendingBroke,    ///< the request could not be sent
    NoReply,         ///< nothing came
    OtherStation,    ///< another station answered
    NotUnderstood,   ///< something came that answers no request of this kind
    Echo,            ///< the request itself came back
    Damaged,         ///< the reply's CRC is wrong
    Cut,             ///< the reply stopped short
    Exception,       ///< the slave, or a gateway for it, refused
    NotRequested,    ///< the driver refused, and nothing was sent
    ProjectDatabase, ///< the project database cannot be used
    BitNotInProject  ///< the project has no tag on a bit of this station
};

/// "no-reply", "crc-error": the word for programs that read the output.
QString nameOf(FailureKind kind);

struct Failure {
    FailureKind kind = FailureKind::NoReply;
    /// The code of an exception; 0 when it is none.
    int exception = 0;
    /// The driver's text as it stands.
    QString text;
    /// What to look at next.
    QString advice;

    /// A gateway that answers for a station which it does not reach.
    bool isStationAbsent() const;
};

/// What it means when a command ended with the driver's \a text, with what \a record says of the line.
/// Where the line could not be opened the text is the line's own.
Failure failureOf(const QString &text, const CommandRecord &record);
