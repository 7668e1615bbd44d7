#pragma once

#include "desk/items/typed_items.h"
#include "desk/points/scaling.h"
#include "desk/points/states.h"

/// A value with a name: where it lies, what it is and how people read it.
struct Point {
    QString name;
    TypedItems at; ///< one value
    Scaling scaling;
    QString unit;
    std::optional<double> low;
    std::optional<double> high;
    States states;
    QString comment;
    int line = 0; ///< in its file; 0 when it comes from none

    /// The number before scaling is worth showing beside the value.
    bool hasRaw() const { return !scaling.isNeutral() || !states.isEmpty(); }
};

/// On which side of low and high a value lies.
enum class Limit { Within, Below, Above };

/// A value of a point as it is shown.
struct PointValue {
    QString text;      ///< scaled; for texts the text itself
    QJsonValue number; ///< the same for programs
    QString raw;       ///< before scaling
    QString state;     ///< its name; empty when it has none
    Limit limit = Limit::Within;
};

PointValue shownOf(const Point &point, const QByteArray &value, TextEncoding encoding = TextEncoding::Latin1);
/// Reads what is written to a point: the name of a state, otherwise a number as it is shown, or a text.
Result<QByteArray> parsePointValue(const Point &point, const QString &text, const ValueParsing &parsing = {});

/// "23.5 °C", or the state; for people.
QString valueWithUnit(const Point &point, const PointValue &value);
/// "below 10" or "above 80"; empty within them.
QString limitText(const Point &point, Limit limit);
