#pragma once

#include "apps/driverdesk/slave/slave_value.h"

#include <QAbstractTableModel>

#include <vector>

/// The columns of the slave's values.
enum class SlaveColumn { Station, Address, Value, Movement, Min, Max, Period };

/// Values of the slave that can be edited, and set to move.
class SlaveValuesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit SlaveValuesModel(QObject *parent = nullptr) : QAbstractTableModel(parent) {}

    const std::vector<SlaveValue> &values() const { return m_values; }
    void setValues(std::vector<SlaveValue> values);
    /// Adds the first items of a range, "HR10..20"; the error says what was expected. What is there already
    /// stays as it is.
    Result<> addRange(const QString &text, int station);
    void remove(const std::vector<int> &rows);
    /// What the slave holds by now, by row.
    void takeNumbers(const std::vector<quint16> &numbers);

    static int columns() { return static_cast<int>(SlaveColumn::Period) + 1; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &text, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// How many values are kept at most.
    static constexpr int MaxValues = 1000;

signals:
    /// A person has set a value.
    void numberSet(int row);

private:
    bool setNumber(SlaveValue &value, SlaveColumn column, const QString &text) const;
    bool isKnown(int station, const AreaRange &range, int offset) const;

    std::vector<SlaveValue> m_values;
};
