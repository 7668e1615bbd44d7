#include "kit/suite/trial.h"

#include "kit/link/outcome.h"

namespace kit
{

namespace
{

const size_t KeptFindings = 3;

} // namespace

Trial::Trial(const QString &check, const Settings &settings, Subject &subject)
    : m_check(check), m_settings(settings), m_subject(subject)
{
    for (const Difference &difference : subject.differences())
        if (difference.check == check)
            m_differences.push_back(difference);
    m_seen.resize(m_differences.size());
}

Plugin &Trial::plugin()
{
    if (!m_plugin)
        m_plugin.reset(new Plugin(m_settings.plugin));
    return *m_plugin;
}

DriverInterface *Trial::driver()
{
    DriverInterface *const driver = plugin().driver();
    if (driver == nullptr)
        skip(QLatin1String("Qt's loader gives no driver: see loading.interface"));
    return driver;
}

void Trial::report(const Finding &finding)
{
    if (isDeclared(finding))
        return;
    ++m_verdict.findingCount;
    if (m_verdict.findings.size() < KeptFindings)
        m_verdict.findings.push_back(finding);
}

void Trial::report(const QString &expected, const QString &happened)
{
    report(findingOf(expected, happened));
}

void Trial::skip(const QString &reason)
{
    m_verdict.skipped = reason;
}

Verdict Trial::verdict() const
{
    Verdict verdict = m_verdict;
    for (size_t i = 0; i < m_differences.size(); ++i)
        if (m_seen[i])
            verdict.reasons.append(m_differences[i].reason);
    if (!isSkipped())
        for (const QString &reason : unseen()) {
            ++verdict.findingCount;
            verdict.findings.push_back(
                findingOf(QLatin1String("the declared difference: ") + reason,
                          QLatin1String("the driver does not differ; the declaration can go")));
        }
    verdict.state = verdict.findingCount > 0     ? Verdict::Failed
                    : !verdict.reasons.isEmpty() ? Verdict::Differs
                    : isSkipped()                ? Verdict::Skipped
                                                 : Verdict::Passed;
    return verdict;
}

bool Trial::isDeclared(const Finding &finding)
{
    for (size_t i = 0; i < m_differences.size(); ++i)
        if (!m_differences[i].covers || m_differences[i].covers(finding)) {
            m_seen[i] = true;
            return true;
        }
    return false;
}

QStringList Trial::unseen() const
{
    QStringList reasons;
    for (size_t i = 0; i < m_differences.size(); ++i)
        if (!m_seen[i])
            reasons.append(m_differences[i].reason);
    return reasons;
}

} // namespace kit
