#include "apps/driverdesk/trends/trend_book.h"

#include "desk/points/csv_table.h"
#include "desk/time_text.h"

#include <algorithm>
#include <cmath>

namespace
{

QString numberText(double number, const QString &unit)
{
    if (std::isnan(number))
        return QStringLiteral("–");
    const QString text = QString::number(number, 'g', 7);
    return unit.isEmpty() ? text : text + QLatin1Char(' ') + unit;
}

bool hasNumber(const Point &point)
{
    return !point.at.type.isText();
}

} // namespace

TrendBook::TrendBook(size_t capacity, QObject *parent) : QAbstractTableModel(parent), m_capacity(capacity) {}

// Of middle lightness, so that they stand out from white and from black.
QColor TrendBook::colorOf(int number)
{
    static const QRgb colors[] = {0xff2b7bba, 0xffd1602a, 0xff2f9e5b, 0xffb4439c,
                                  0xff8a8f00, 0xff6b6bd6, 0xffc0392b, 0xff129c9c};
    return QColor(colors[number % 8]);
}

void TrendBook::setRows(std::vector<PointRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_curves.clear();
    endResetModel();
    emit curvesChanged();
}

int TrendBook::freeNumber() const
{
    for (int number = 0;; ++number) {
        if (std::none_of(m_curves.begin(), m_curves.end(),
                         [=](const TrendCurve &curve) { return curve.number == number; }))
            return number;
    }
}

// Values of one unit share an axis; those of a second unit get the other one.
bool TrendBook::goesRight(const QString &unit) const
{
    for (const TrendCurve &curve : m_curves) {
        if (curve.unit == unit)
            return curve.isRight;
    }
    return std::any_of(m_curves.begin(), m_curves.end(),
                       [](const TrendCurve &curve) { return !curve.isRight; });
}

bool TrendBook::add(int row)
{
    const auto index = static_cast<size_t>(row);
    if (trendedRows().count(row) > 0 || rowCount() >= MaxCurves || row < 0 || index >= m_rows.size())
        return false;
    const Point &point = *m_rows[index].point;
    if (!hasNumber(point))
        return false;
    beginInsertRows({}, rowCount(), rowCount());
    m_curves.push_back({row, labelOf(m_rows[index]), point.unit, goesRight(point.unit), true, freeNumber(),
                        TrendRing(m_capacity)});
    endInsertRows();
    emit curvesChanged();
    return true;
}

bool TrendBook::addNamed(const QString &label)
{
    for (size_t row = 0; row < m_rows.size(); ++row) {
        if (labelOf(m_rows[row]) == label)
            return add(int(row));
    }
    return false;
}

void TrendBook::remove(const std::vector<int> &curves)
{
    std::vector<int> falling = curves;
    std::sort(falling.rbegin(), falling.rend());
    for (const int curve : falling) {
        beginRemoveRows({}, curve, curve);
        m_curves.erase(m_curves.begin() + curve);
        endRemoveRows();
    }
    emit curvesChanged();
}

void TrendBook::add(const std::vector<TrendSample> &samples)
{
    if (samples.empty() || m_curves.empty())
        return;
    for (const TrendSample &sample : samples) {
        for (TrendCurve &curve : m_curves) {
            if (curve.row == sample.row)
                curve.ring.add(static_cast<double>(sample.time), sample.number);
        }
    }
    emit dataChanged(index(0, static_cast<int>(TrendColumn::Now)),
                     index(rowCount() - 1, static_cast<int>(TrendColumn::AtCursor)));
}

void TrendBook::addGaps(qint64 time)
{
    for (TrendCurve &curve : m_curves)
        curve.ring.add(static_cast<double>(time), std::numeric_limits<double>::quiet_NaN());
}

std::set<int> TrendBook::trendedRows() const
{
    std::set<int> rows;
    for (const TrendCurve &curve : m_curves)
        rows.insert(curve.row);
    return rows;
}

void TrendBook::setCursor(double time)
{
    m_cursor = time;
    if (!m_curves.empty())
        emit dataChanged(index(0, static_cast<int>(TrendColumn::AtCursor)),
                         index(rowCount() - 1, static_cast<int>(TrendColumn::AtCursor)));
}

QStringList TrendBook::csvLines(double begin, double end) const
{
    QStringList lines{QStringLiteral("time,point,value,unit")};
    for (const TrendCurve &curve : m_curves) {
        for (size_t i = curve.ring.firstAt(begin); i < curve.ring.size() && curve.ring.at(i).x() <= end;
             ++i) {
            const QPointF &point = curve.ring.at(i);
            const QString value = std::isnan(point.y()) ? QString() : QString::number(point.y(), 'g', 15);
            lines += QStringList{dateAndTimeText(QDateTime::fromMSecsSinceEpoch(qint64(point.x()))),
                                 csvCell(curve.label), value, csvCell(curve.unit)}
                         .join(QLatin1Char(','));
        }
    }
    return lines;
}

int TrendBook::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_curves.size());
}

int TrendBook::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(TrendColumn::AtCursor) + 1;
}

QString TrendBook::textOf(const TrendCurve &curve, TrendColumn column) const
{
    switch (column) {
    case TrendColumn::Point: return curve.label;
    case TrendColumn::Axis: return curve.isRight ? QStringLiteral("right") : QStringLiteral("left");
    case TrendColumn::Now:
        return curve.ring.size() == 0 ? QStringLiteral("–")
                                      : numberText(curve.ring.at(curve.ring.size() - 1).y(), curve.unit);
    case TrendColumn::AtCursor: break;
    }
    return numberText(curve.ring.numberAt(m_cursor), curve.unit);
}

QVariant TrendBook::data(const QModelIndex &index, int role) const
{
    const TrendCurve &curve = m_curves[static_cast<size_t>(index.row())];
    const auto column = static_cast<TrendColumn>(index.column());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return textOf(curve, column);
    case Qt::ToolTipRole:
        return column == TrendColumn::Axis ? tr("Double click or Enter: the other axis") : curve.label;
    case Qt::TextAlignmentRole:
        return QVariant((column >= TrendColumn::Now ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::DecorationRole:
        return column == TrendColumn::Point ? QVariant(colorOf(curve.number)) : QVariant();
    case Qt::CheckStateRole:
        return column == TrendColumn::Point ? QVariant(curve.isShown ? Qt::Checked : Qt::Unchecked)
                                            : QVariant();
    default: return {};
    }
}

bool TrendBook::setData(const QModelIndex &index, const QVariant &value, int role)
{
    TrendCurve &curve = m_curves[static_cast<size_t>(index.row())];
    const auto column = static_cast<TrendColumn>(index.column());
    if (column == TrendColumn::Point && role == Qt::CheckStateRole)
        curve.isShown = value.toInt() == Qt::Checked;
    else if (column == TrendColumn::Axis && role == Qt::EditRole)
        curve.isRight = value.toString() == QLatin1String("right");
    else
        return false;
    Q_EMIT dataChanged(index, index);
    Q_EMIT curvesChanged();
    return true;
}

Qt::ItemFlags TrendBook::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == static_cast<int>(TrendColumn::Point) ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant TrendBook::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (static_cast<TrendColumn>(section)) {
    case TrendColumn::Point: return tr("Point");
    case TrendColumn::Axis: return tr("Axis");
    case TrendColumn::Now: return tr("Now");
    case TrendColumn::AtCursor: break;
    }
    return tr("At cursor");
}
