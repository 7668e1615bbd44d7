#pragma once

#include <QByteArray>

/// One exchange on the wire.
struct Exchange {
    QByteArray request;
    QByteArray reply; ///< what came of it, also when that is not all
};
