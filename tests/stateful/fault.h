#pragma once

#include <vector>

/// What may go wrong with a request.
enum class Fault {
    None,
    SendFails,              ///< the channel accepts all but one byte
    RequestIsLost,          ///< the slave has not seen it
    ReplyIsLost,            ///< the slave has carried it out
    ReplyIsCutEarly,        ///< after three bytes
    ReplyIsCutLate,         ///< before its last byte
    ReplyHasWrongCrc,       ///< in its last byte
    ReplyOfAnotherStation,  ///< of a number that differs in bit 0
    ReplyOfAnotherFunction, ///< of function 0x2B
};

/// All of them.
const std::vector<Fault> &allFaults();
const char *nameOf(Fault fault);
