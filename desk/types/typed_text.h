#pragma once

#include "desk/types/value_type.h"

#include <optional>

/// "HR5:f32x4@CDAB" taken apart; nothing of it is checked but the type and the count.
struct TypedText {
    QString address;
    std::optional<ValueType> type;
    std::optional<int> count;
    QString order; ///< empty when there is none
};

/// Takes ADDRESS[:TYPE[xCOUNT]][@ORDER] apart. The error says what is wrong and what was expected.
Result<TypedText> parseTypedText(const QString &text);
