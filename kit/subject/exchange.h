#pragma once

#include <QByteArray>

#include <vector>

namespace kit
{

/// A request and what the driver read of the reply.
struct Exchange {
    QByteArray request; ///< as it was sent
    QByteArray reply;   ///< what the driver was given of it
    int reads;          ///< in how many the driver took the reply
};
using Exchanges = std::vector<Exchange>;

} // namespace kit
