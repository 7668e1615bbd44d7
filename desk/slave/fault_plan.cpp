#include "desk/slave/fault_plan.h"

#include <QRegularExpression>

namespace
{

struct FaultKind {
    Fault::Kind kind;
    const char *name;
    int minValue;
    int maxValue;
};

const int NoValue = -1;
const int MaxDelay = 3600 * 1000;

const FaultKind faultKinds[] = {
    {Fault::Silence, "silence", NoValue, NoValue},
    {Fault::Delay, "delay", 0, MaxDelay},
    {Fault::Truncate, "truncate", 0, 255},
    {Fault::WrongStation, "wrong-station", 0, 255},
    {Fault::WrongFunction, "wrong-function", 0, 255},
    {Fault::WrongCrc, "wrong-crc", NoValue, NoValue},
    {Fault::Exception, "exception", 0, 255},
    {Fault::JunkBefore, "junk-before", 1, 1024},
    {Fault::JunkAfter, "junk-after", 1, 1024},
    {Fault::Split, "split", 0, MaxDelay},
    {Fault::Merge, "merge", NoValue, NoValue},
    {Fault::Double, "double", NoValue, NoValue},
    {Fault::Stale, "stale", NoValue, NoValue},
    {Fault::Echo, "echo", NoValue, NoValue},
    {Fault::OtherMaster, "other-master", 1, 247},
    {Fault::Late, "late", 0, MaxDelay},
    {Fault::Reset, "reset", NoValue, NoValue},
    {Fault::Close, "close", NoValue, NoValue},
    {Fault::HalfOpen, "half-open", NoValue, NoValue},
};

const FaultKind *findFault(const QString &name)
{
    for (const FaultKind &kind : faultKinds) {
        if (name == QLatin1String(kind.name))
            return &kind;
    }
    return nullptr;
}

QString problemWithValue(const FaultKind &kind)
{
    if (kind.maxValue == NoValue)
        return QStringLiteral("%1 takes no value").arg(QLatin1String(kind.name));
    return QStringLiteral("%1 takes %2 to %3")
        .arg(QLatin1String(kind.name), QString::number(kind.minValue), QString::number(kind.maxValue));
}

} // namespace

QString faultName(Fault::Kind kind)
{
    for (const FaultKind &known : faultKinds) {
        if (known.kind == kind)
            return QLatin1String(known.name);
    }
    return QStringLiteral("none");
}

QStringList allFaultNames()
{
    QStringList names;
    for (const FaultKind &kind : faultKinds)
        names.append(QLatin1String(kind.name));
    return names;
}

FaultPlan::FaultPlan(quint32 seed) : m_random(seed) {}

void FaultPlan::setSeed(quint32 seed)
{
    m_random.seed(seed);
}

void FaultPlan::addShare(const Fault &fault, double percent)
{
    m_rules.append(Rule{fault, percent / 100, 0});
    m_shares += percent;
}

void FaultPlan::addEvery(const Fault &fault, int n)
{
    m_rules.append(Rule{fault, 0, n});
}

void FaultPlan::inject(const Fault &fault, int count)
{
    m_injected.insert(m_injected.size(), count, fault);
}

Result<> FaultPlan::add(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^([a-z-]+)(?::(\\d{1,7}))?=(?:(\\d{1,3}(?:\\.\\d{1,6})?)%|1/(\\d{1,9}))$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return Error{
            QStringLiteral("\"%1\" is not like silence=1% or truncate:4=1/10; =100% means always").arg(text)};
    const FaultKind *kind = findFault(match.captured(1));
    if (kind == nullptr)
        return Error{QStringLiteral("there is no fault \"%1\"; there are %2")
                         .arg(match.captured(1), allFaultNames().join(QLatin1String(", ")))};

    Fault fault;
    fault.kind = kind->kind;
    if (!match.captured(2).isEmpty()) {
        fault.value = match.captured(2).toInt();
        if (fault.value < kind->minValue || fault.value > kind->maxValue)
            return Error{problemWithValue(*kind)};
    }
    if (!match.captured(4).isEmpty()) {
        const int n = match.captured(4).toInt();
        if (n < 1)
            return Error{QStringLiteral("1/%1 is no share").arg(n)};
        addEvery(fault, n);
        return {};
    }
    const double percent = match.captured(3).toDouble();
    if (m_shares + percent > 100)
        return Error{QStringLiteral("the shares of the faults make more than 100 %")};
    addShare(fault, percent);
    return {};
}

Fault FaultPlan::next()
{
    if (m_injected.isEmpty())
        return planned();
    return m_injected.takeFirst();
}

Fault FaultPlan::planned()
{
    ++m_replies;
    for (const Rule &rule : m_rules) {
        if (rule.every > 0 && m_replies % static_cast<quint64>(rule.every) == 0)
            return rule.fault;
    }
    if (m_shares <= 0)
        return Fault();
    double draw = static_cast<double>(m_random()) / 4294967296.0;
    for (const Rule &rule : m_rules) {
        if (draw < rule.share)
            return rule.fault;
        draw -= rule.share;
    }
    return Fault();
}

int FaultPlan::pick(int min, int max)
{
    return min + static_cast<int>(m_random() % static_cast<quint32>(max - min + 1));
}
