#pragma once

#include "apps/driverdesk/trends/trend_ring.h"
#include "apps/driverdesk/worker/ground.h"
#include "apps/driverdesk/worker/snapshot.h"

#include <QAbstractTableModel>
#include <QColor>

#include <set>

/// The columns of the list of curves.
enum class TrendColumn { Point, Axis, Now, AtCursor };

/// A value whose course is drawn.
struct TrendCurve {
    int row = 0; ///< of the points
    QString label;
    QString unit;
    bool isRight = false; ///< on the axis at the right
    bool isShown = true;
    int number = 0; ///< of its colour and its dashes
    TrendRing ring;
};

/// The curves with their samples, as a list with what they are at the cursor.
class TrendBook : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// \a capacity: samples that a curve keeps.
    explicit TrendBook(size_t capacity = HourAtTen, QObject *parent = nullptr);

    /// Of another ground; all curves are gone.
    void setRows(std::vector<PointRow> rows);
    /// False when it is there already, has no number, or there are too many.
    bool add(int row);
    bool addNamed(const QString &label);
    void remove(const std::vector<int> &curves);
    void add(const std::vector<TrendSample> &samples);
    /// Nothing is read for a while.
    void addGaps(qint64 time);

    const std::vector<TrendCurve> &curves() const { return m_curves; }
    std::set<int> trendedRows() const;
    void setCursor(double time);
    double cursor() const { return m_cursor; }
    /// Lines of comma separated values: time, point, value, unit; a gap has no value.
    QStringList csvLines(double begin, double end) const;

    static QColor colorOf(int number);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    static constexpr size_t HourAtTen = 36000;
    static constexpr int MaxCurves = 16;

signals:
    /// Other curves are there, or on other axes.
    void curvesChanged();

private:
    QString textOf(const TrendCurve &curve, TrendColumn column) const;
    int freeNumber() const;
    bool goesRight(const QString &unit) const;

    size_t m_capacity;
    std::vector<PointRow> m_rows;
    std::vector<TrendCurve> m_curves;
    double m_cursor = 0;
};
