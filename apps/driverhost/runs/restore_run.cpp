#include "apps/driverhost/runs/restore_run.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/question.h"
#include "desk/items/number_text.h"
#include "desk/output/difference_form.h"
#include "desk/output/summary.h"
#include "desk/snapshot/restoration.h"

#include <algorithm>

namespace
{

// One restore, from what differs to its last row.
class RestoreRun
{
public:
    RestoreRun(Session &session, const SnapshotAndLink &given, const Compared &compared,
               const RestoreOptions &options)
        : m_session(session),
          m_given(given),
          m_options(options),
          m_differences(compared.differences),
          m_restoration(writesOf(compared.differences, options.style, compared.limits))
    {
    }

    /// Shows what would change; false when nobody reads it.
    bool show() const;
    /// Whether it is wanted.
    bool isAllowed() const;
    void write();
    /// Prints the rows; the exit code.
    int finish() const;

private:
    bool hasAnything() const { return m_restoration.runs() > 0; }
    bool writeAndVerify(size_t run);
    bool fail(const QString &label);
    void reportEnd() const;
    QString resultOf(const Difference &difference) const;
    QStringList rowLines() const;

    Session &m_session;
    const SnapshotAndLink &m_given;
    const RestoreOptions &m_options;
    const std::vector<Difference> &m_differences;
    Restoration m_restoration;
    int m_code = Success;
};

bool RestoreRun::show() const
{
    QStringList changes;
    qint64 inputs = 0;
    for (const Difference &difference : m_differences) {
        if (canBeWritten(difference))
            changes += restorationText(difference);
        else if (isInputArea(difference.area))
            ++inputs;
        else
            report(differenceText(difference) + QStringLiteral("; it cannot be put back"));
    }
    if (inputs > 0)
        report(QStringLiteral("inputs are never written; %1 of them differ%2")
                   .arg(QString::number(inputs), inputs == 1 ? QStringLiteral("s") : QString()));
    // Where programs read the output, people still see what they are asked about.
    if (m_options.format == OutputFormat::Text)
        return changes.isEmpty() || print(changes);
    for (const QString &change : changes)
        report(change);
    return true;
}

bool RestoreRun::isAllowed() const
{
    if (!hasAnything()) {
        report(QStringLiteral("nothing to put back"));
        return false;
    }
    if (m_options.isDryRun) {
        report(QStringLiteral("%1 would be written to %2")
                   .arg(counted(m_restoration.addresses(), "value"), targetText(m_given.link.target())));
        return false;
    }
    const QString question =
        QStringLiteral("Write %1 to %2?")
            .arg(counted(m_restoration.addresses(), "value"), targetText(m_given.link.target()));
    if (m_options.mayWrite || askYesOrNo(question))
        return true;
    report(QStringLiteral("nothing is written"));
    return false;
}

void RestoreRun::write()
{
    InterruptibleRun run(m_session);
    for (size_t i = 0; i < m_restoration.runs() && m_code == Success; ++i) {
        run.setLabel(m_restoration.label(i));
        if (!run.isInterrupted() && writeAndVerify(i))
            continue;
        if (run.isInterrupted()) {
            reportError(QStringLiteral("interrupted"));
            m_code = Interrupted;
        }
    }
    reportEnd();
}

bool RestoreRun::writeAndVerify(size_t run)
{
    if (!m_restoration.write(m_session, run)) {
        const Failure failure = m_session.failure();
        fail(m_restoration.label(run));
        if (failure.exception == modbus::IllegalFunction && m_options.style == WriteStyle::Together)
            report(QStringLiteral("  a slave without functions 15 and 16 is written with --one-by-one"));
        return false;
    }
    return m_restoration.verify(m_session, run) || fail(m_restoration.label(run));
}

// What was given up because the run is over is no failure of the slave.
bool RestoreRun::fail(const QString &label)
{
    if (StopSignal::raised())
        return false;
    reportFailure(m_session, label);
    m_code = exitCodeOf(m_session.failure());
    return false;
}

void RestoreRun::reportEnd() const
{
    for (const QString &mismatch : m_restoration.mismatches())
        reportError(mismatch);
    const bool isWhole = m_restoration.count(Restored::Verified) == m_restoration.addresses();
    if (isWhole)
        report(QStringLiteral("%1 written and verified").arg(counted(m_restoration.addresses(), "value")));
    else
        for (const QString &line : m_restoration.lines())
            report(line);
}

int RestoreRun::finish() const
{
    const QStringList lines = rowLines();
    if (!lines.isEmpty() && !print(lines))
        return OutputClosed;
    if (m_code != Success)
        return m_code;
    if (m_restoration.count(Restored::Different) > 0)
        return NotVerified;
    const bool isLeft = std::any_of(m_differences.begin(), m_differences.end(), [](const Difference &one) {
        return !canBeWritten(one) && !isInputArea(one.area);
    });
    if (isLeft)
        return FoundDifferent;
    const bool isRefused = !m_options.isDryRun && m_restoration.count(Restored::NotSent) > 0;
    return isRefused ? OtherFailure : Success;
}

QString RestoreRun::resultOf(const Difference &difference) const
{
    const std::optional<Restored> state = m_restoration.stateOf(difference);
    if (state)
        return nameOf(*state);
    return isInputArea(difference.area) ? QStringLiteral("input") : QStringLiteral("missing");
}

QStringList RestoreRun::rowLines() const
{
    if (m_options.format == OutputFormat::Text)
        return {};
    std::vector<DifferenceRow> rows;
    rows.reserve(m_differences.size());
    for (const Difference &difference : m_differences)
        rows.push_back({difference, resultOf(difference)});
    QStringList lines = linesOf(rows, true, m_options.format);
    if (m_options.format == OutputFormat::Json)
        lines += summaryLine(m_session.counts(),
                             {{QStringLiteral("values"), valuesIn(m_given.kept)},
                              {QStringLiteral("different"), static_cast<int>(m_differences.size())},
                              {QStringLiteral("verified"), m_restoration.count(Restored::Verified)},
                              {QStringLiteral("interrupted"), m_code == Interrupted}});
    return lines;
}

} // namespace

int restore(Session &session, const SnapshotAndLink &given, const RestoreOptions &options)
{
    const Compared compared = compareWith(session, given.kept);
    if (compared.code != Success)
        return compared.code;
    report(countText(compared.differences, given));
    RestoreRun run(session, given, compared, options);
    if (!run.show())
        return OutputClosed;
    if (run.isAllowed())
        run.write();
    return run.finish();
}
