#pragma once

#include "desk/channel/exchange_settings.h"
#include "desk/result.h"

#include <QString>

/// Takes how lines are settled from a text: "auto", "echo", "quiet", "quiet:900" (milliseconds) or "off", for
/// all stations or, as in "7=off", for one; several with commas between them. The error names the part that
/// is none of these.
Result<> applySettleRules(const QString &text, ExchangeSettings &settings);
