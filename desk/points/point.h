#pragma once

#include "desk/items/typed_items.h"
#include "desk/points/scaling.h"
#include "desk/points/states.h"

/// A value with a name: where it lies, what it is and how people read it.
struct Point {
    QString name;
    TypedItems at; ///< one value; without a name some of them
    Scaling scaling;
    QString unit;
    std::optional<double> low;
    std::optional<double> high;
    States states;
    QString comment;
    TextEncoding encoding = TextEncoding::Latin1; ///< of texts
    int line = 0;                                 ///< in its file; 0 when it comes from none
};

/// A value of a point as it is shown.
struct PointValue {
    QString text;         ///< scaled
    QJsonValue number;    ///< the same for programs
    QString raw;          ///< before scaling
    QJsonValue rawNumber; ///< the same for programs
    QString state;        ///< its name; empty when it has none
    QString limit;        ///< "below 10" or "above 80"; empty within low and high

    /// For people: the state, or the value with its unit.
    QString withUnit(const QString &unit) const;
};

/// What people call the point: its name, or its address.
QString labelOf(const Point &point);

PointValue shownOf(const Point &point, const QByteArray &value);
/// Reads what is written to a point: the name of a state, otherwise a number as it is shown, or a text. With
/// \a mayRound a number becomes what the point can hold.
Result<QByteArray> parsePointValue(const Point &point, const QString &text, bool mayRound);
