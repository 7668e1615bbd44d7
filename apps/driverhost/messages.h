#pragma once

#include <QString>

/// What people are to know goes to standard error, so that standard output holds nothing but values.

/// "driverhost: TEXT".
void complain(const QString &text);
/// The text as it stands.
void tell(const QString &text);
