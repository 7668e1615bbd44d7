#pragma once

/// How a line is settled after an exchange that did not end in a whole reply of the station asked. RTU
/// replies carry no number of their request, so nothing more is sent to the station before a reply that comes
/// late can no longer be taken for the answer to what is sent next.
enum class SettleMode {
    Auto, ///< by echo; by quiet at stations that refuse or ignore function 8
    Echo, ///< function 8, sub-function 0, with a number of its own; what comes before its echo is thrown away
    Quiet, ///< nothing comes from the station for the quiet time; nothing is sent meanwhile
    Off    ///< not at all
};

struct SettleRule {
    SettleMode mode = SettleMode::Auto;
    int quietTime = 0; ///< in milliseconds; 0: three time-outs
};
