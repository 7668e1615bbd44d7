#pragma once

#include "desk/points/point.h"

#include <QStringList>

#include <map>

/// The columns of a table of points.
enum class Column { Name, Address, Type, Order, Scale, Offset, Unit, Low, High, States, Comment };

/// Their titles, in the order of the enumeration.
const QStringList &columnTitles();

/// The cells of one row by their columns; what the table lacks is empty.
using PointCells = std::map<Column, QString>;

/// What is wrong with a row, and in which column.
struct RowProblem {
    Column column;
    QString text;
};

/// Makes a point of a row; what is wrong is added to \a problems.
Point pointOf(const PointCells &cells, std::vector<RowProblem> &problems);
