#pragma once

#include <QtGlobal>

/// \file
/// Contracts of the tools.

/// Stops the process with \a text when \a condition does not hold, in every build type: a caller that breaks
/// a tool's contract must not go on with a wrong answer, on a panel even less than at a desk.
#define TOOL_ASSERT(condition, text)                                                                         \
    ((condition) ? static_cast<void>(0) : qt_assert(text, __FILE__, __LINE__))
