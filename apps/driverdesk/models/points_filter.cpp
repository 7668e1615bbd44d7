#include "apps/driverdesk/models/points_filter.h"

#include <QCollator>

#include <algorithm>

namespace
{

// "pump 2" before "pump 10".
const QCollator &naturalOrder()
{
    static const QCollator collator = [] {
        // In the C locale a collator knows no numbers.
        QCollator order{QLocale(QLocale::English)};
        order.setNumericMode(true);
        order.setCaseSensitivity(Qt::CaseInsensitive);
        return order;
    }();
    return collator;
}

bool isNumber(const QVariant &value)
{
    return value.userType() != QMetaType::QString;
}

} // namespace

PointsFilter::PointsFilter(PointsModel &model, QObject *parent)
    : QSortFilterProxyModel(parent), m_model(model)
{
    setDynamicSortFilter(false);
    setSourceModel(&model);
    connect(&model, &QAbstractItemModel::modelReset, this, [this] { sort(sortColumn(), sortOrder()); });
}

void PointsFilter::setText(const QString &text)
{
    m_words = text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    invalidateFilter();
    sort(sortColumn(), sortOrder());
}

void PointsFilter::setState(std::optional<PointState> state)
{
    m_state = state;
    invalidateFilter();
    sort(sortColumn(), sortOrder());
}

void PointsFilter::followValues()
{
    if (m_state)
        invalidateFilter();
    if (sortColumn() >= 0 && PointsModel::isMoving(static_cast<PointColumn>(sortColumn())))
        sort(sortColumn(), sortOrder());
}

bool PointsFilter::filterAcceptsRow(int row, const QModelIndex & /*parent*/) const
{
    if (m_state && m_model.viewOf(row).state() != *m_state)
        return false;
    if (m_words.isEmpty())
        return true;
    const QString text = m_model.index(row, 0).data(PointsModel::SearchRole).toString();
    return std::all_of(m_words.begin(), m_words.end(),
                       [&](const QString &word) { return text.contains(word, Qt::CaseInsensitive); });
}

bool PointsFilter::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const QVariant leftKey = left.data(PointsModel::SortRole);
    const QVariant rightKey = right.data(PointsModel::SortRole);
    if (isNumber(leftKey) != isNumber(rightKey))
        return isNumber(leftKey);
    if (isNumber(leftKey))
        return leftKey.toDouble() < rightKey.toDouble();
    return naturalOrder().compare(leftKey.toString(), rightKey.toString()) < 0;
}
