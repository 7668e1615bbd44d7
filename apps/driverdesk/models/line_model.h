#pragma once

#include "apps/driverdesk/worker/line_report.h"

#include <QAbstractTableModel>

/// The counts of a line: a row each, with a column for all stations together and one for each of them.
class LineModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit LineModel(QObject *parent = nullptr);

    void setReport(const LineReport &report);
    const LineReport &report() const { return m_report; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const LineCounts &countsAt(int column) const;

    LineReport m_report;
    std::vector<int> m_stations;
    std::vector<int> m_codes; ///< exceptions that have come
};
