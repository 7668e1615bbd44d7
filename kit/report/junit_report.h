#pragma once

#include "kit/report/report.h"

namespace kit
{

/// JUnit's XML, as continuous integration reads it: one suite with the name of the plug-in, a case for each
/// check.
QByteArray junitReport(const QString &suite, const Results &results);

} // namespace kit
