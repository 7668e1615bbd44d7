#include "apps/driverdesk/models/line_model.h"

#include "desk/wire/frame_text.h"

#include <array>

namespace
{

struct Count {
    const char *title;
    quint64 (*of)(const LineCounts &counts);
};

const std::array<Count, 13> Counts = {{
    {"Requests", [](const LineCounts &counts) { return counts.requests; }},
    {"Attempts", [](const LineCounts &counts) { return counts.attempts; }},
    {"Retries", [](const LineCounts &counts) { return counts.retries(); }},
    {"Time-outs", [](const LineCounts &counts) { return counts.timeouts; }},
    {"CRC errors", [](const LineCounts &counts) { return counts.crcErrors; }},
    {"Cut replies", [](const LineCounts &counts) { return counts.cutReplies; }},
    {"Wrong replies", [](const LineCounts &counts) { return counts.wrongReplies; }},
    {"Reconnects", [](const LineCounts &counts) { return counts.reconnects; }},
    {"Failed connections", [](const LineCounts &counts) { return counts.failedOpenings; }},
    {"Ended by the other side", [](const LineCounts &counts) { return counts.endsByOther; }},
    {"Attempts not sent", [](const LineCounts &counts) { return counts.withheld; }},
    {"Bytes skipped", [](const LineCounts &counts) { return counts.skippedBytes; }},
    {"Bytes discarded", [](const LineCounts &counts) { return counts.discardedBytes; }},
}};

QString exceptionTitle(int code)
{
    return QStringLiteral("Exception %1, %2").arg(code).arg(exceptionName(code));
}

quint64 exceptionCount(const LineCounts &counts, int code)
{
    const auto found = counts.exceptions.find(code);
    return found == counts.exceptions.end() ? 0 : found->second;
}

} // namespace

LineModel::LineModel(QObject *parent) : QAbstractTableModel(parent) {}

void LineModel::setReport(const LineReport &report)
{
    std::vector<int> stations;
    for (const auto &entry : report.counts.stations())
        stations.push_back(entry.first);
    std::vector<int> codes;
    for (const auto &entry : report.counts.total().exceptions)
        codes.push_back(entry.first);
    const bool isSameShape = stations == m_stations && codes == m_codes;
    if (!isSameShape)
        beginResetModel();
    m_report = report;
    m_stations = stations;
    m_codes = codes;
    if (isSameShape)
        emit dataChanged(index(0, 1), index(rowCount() - 1, columnCount() - 1));
    else
        endResetModel();
}

const LineCounts &LineModel::countsAt(int column) const
{
    return column == 1 ? m_report.counts.total()
                       : m_report.counts.stations().at(m_stations[static_cast<size_t>(column - 2)]);
}

int LineModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(Counts.size() + m_codes.size());
}

int LineModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2 + int(m_stations.size());
}

QVariant LineModel::data(const QModelIndex &index, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return QVariant((index.column() == 0 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    const auto row = static_cast<size_t>(index.row());
    const bool isException = row >= Counts.size();
    const int code = isException ? m_codes[row - Counts.size()] : 0;
    if (index.column() == 0)
        return isException ? exceptionTitle(code) : tr(Counts.at(row).title);
    const LineCounts &counts = countsAt(index.column());
    return QString::number(isException ? exceptionCount(counts, code) : Counts.at(row).of(counts));
}

QVariant LineModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    if (section == 0)
        return tr("Count");
    return section == 1 ? tr("All") : tr("Station %1").arg(m_stations[static_cast<size_t>(section - 2)]);
}
