#pragma once

#include <QByteArray>

/// One exchange on the wire.
struct Exchange {
    QByteArray request;
    QByteArray reply;            ///< what came of it, also when that is not all
    bool isEndedByOther = false; ///< the other side closed or reset the connection before the reply was whole
    bool isEchoed = false;       ///< the line returned the request in front of the reply, or in its place
    bool isGivenUp = false;      ///< nobody waited any longer, since the run was to end
};

/// What became of an exchange, by the driver's rules.
enum class Outcome {
    Good,
    Silence,         ///< nothing came
    Cut,             ///< the reply stopped short
    CrcError,        ///< the whole reply is damaged
    OtherStation,    ///< another station's reply
    OtherFunction,   ///< neither the request's function nor its exception
    Exception,       ///< refused
    ConnectionEnded, ///< the other side closed or reset the connection
    GivenUp          ///< not waited for
};
Outcome outcomeOf(const Exchange &exchange);
/// The code of an exception reply; 0 when the reply is none.
int exceptionIn(const Exchange &exchange);
