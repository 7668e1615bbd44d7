#include "desk/plan/plan_report.h"

#include <algorithm>

namespace
{

QString counted(const AreaPlan &areaPlan, int count)
{
    const QString thing = isBitArea(areaPlan.area()) ? QStringLiteral("bit") : QStringLiteral("register");
    return QStringLiteral("%1 %2%3").arg(QString::number(count), thing,
                                         count == 1 ? QString() : QStringLiteral("s"));
}

QString textOf(const AreaPlan &areaPlan, const Span &span)
{
    return rangeText(areaPlan.rangeOf(span));
}

QString refusalText(int exception)
{
    return exception == 0 ? QStringLiteral("was not answered")
                          : QStringLiteral("was refused with exception %1").arg(exception);
}

class AreaReport
{
public:
    AreaReport(AreaPlan &areaPlan, StationFacts &facts)
        : m_areaPlan(areaPlan),
          m_plan(areaPlan.plan(facts)),
          m_rules(areaPlan.rules(facts)),
          m_refusals(facts.refusals(areaPlan.area()))
    {
    }

    void addTo(PlanReport &report) const
    {
        for (int span = 0; span < m_plan.size(); span = m_plan.lastSpan(span) + 1)
            report.requests.push_back(request(span, m_plan.lastSpan(span)));
        addRefused(report.refused);
    }

private:
    PlannedRequest request(int first, int last) const
    {
        const Span span = m_plan.range(first, last);
        PlannedRequest request;
        request.range = m_areaPlan.rangeOf(span);
        request.microseconds = m_rules.cost.of(unitsOf(m_areaPlan.area(), span.count()));
        for (const AreaPoint &point : m_areaPlan.points())
            request.points += span.contains(point.span) ? 1 : 0;
        int gaps = 0;
        for (int next = first + 1; next <= last; ++next) {
            const int gap = gapBefore(next);
            request.filled += gap;
            gaps += gap > 0 ? 1 : 0;
        }
        QStringList reasons;
        if (gaps > 0)
            reasons += QStringLiteral("fills %1 in %2 %3")
                           .arg(counted(m_areaPlan, request.filled))
                           .arg(gaps)
                           .arg(gaps == 1 ? QStringLiteral("gap") : QStringLiteral("gaps"));
        if (last + 1 < m_plan.size())
            reasons += whyNotFurther(first, last);
        request.why = reasons.join(QStringLiteral("; "));
        return request;
    }

    int gapBefore(int span) const
    {
        return std::max(0, m_plan.range(span, span).first - m_plan.range(span - 1, span - 1).last - 1);
    }

    QString whyNotFurther(int first, int last) const
    {
        const int gap = gapBefore(last + 1);
        const Span whole = m_plan.range(first, last + 1);
        if (m_rules.isOneByOne)
            return QStringLiteral("one by one");
        if (gap > 0 && !m_rules.fillsGaps)
            return QStringLiteral("gaps are not to be filled");
        for (const Refusals::Refusal &refusal : m_refusals.all()) {
            if (whole.contains(refusal.span))
                return QStringLiteral("%1 %2").arg(textOf(m_areaPlan, refusal.span),
                                                   refusalText(refusal.exception));
        }
        if (whole.count() > m_rules.maxCount)
            return QStringLiteral("no more than %1 at once").arg(counted(m_areaPlan, m_rules.maxCount));
        if (m_rules.cost.perUnit * unitsOf(m_areaPlan.area(), gap) >= m_rules.cost.perRequest)
            return QStringLiteral("the gap of %1 costs more than a request").arg(counted(m_areaPlan, gap));
        return QStringLiteral("cut here, where it costs least");
    }

    void addRefused(std::vector<RefusedPoints> &refused) const
    {
        for (const AreaPoint &point : m_areaPlan.points()) {
            const Refusals::Refusal *refusal = m_refusals.wanted(point.span);
            if (refusal == nullptr)
                continue;
            const AreaRange range = m_areaPlan.rangeOf(point.span);
            const bool isSame = !refused.empty() && rangeText(refused.back().range) == rangeText(range);
            if (!isSame)
                refused.push_back({range, 0, *refusal});
            ++refused.back().points;
        }
    }

    const AreaPlan &m_areaPlan;
    const SpanPlan &m_plan;
    RangeRules m_rules;
    const Refusals &m_refusals;
};

RequestTerms termsOf(const AreaPlan &areaPlan, StationFacts &facts)
{
    const RangeRules rules = areaPlan.rules(facts);
    RequestTerms terms;
    terms.station = areaPlan.station();
    terms.areBits = isBitArea(areaPlan.area());
    terms.cost = rules.cost;
    terms.isMeasured = facts.requests(areaPlan.area()).cost.hasMeasured();
    terms.maxCount = rules.maxCount;
    return terms;
}

} // namespace

double PlanReport::microseconds() const
{
    double sum = 0;
    for (const PlannedRequest &request : requests)
        sum += request.microseconds;
    return sum;
}

PlanReport planReportOf(std::vector<AreaPlan> &areaPlans, Learnt &learnt)
{
    PlanReport report;
    for (AreaPlan &areaPlan : areaPlans) {
        StationFacts &facts = learnt[areaPlan.station()];
        facts.compareCosts();
        const RequestTerms terms = termsOf(areaPlan, facts);
        const bool isNew = report.terms.empty() || report.terms.back().station != terms.station ||
                           report.terms.back().areBits != terms.areBits;
        if (isNew)
            report.terms.push_back(terms);
        AreaReport(areaPlan, facts).addTo(report);
    }
    return report;
}
