#include "kit/suite/verdict.h"

#include <QDataStream>

namespace kit
{

namespace
{

QDataStream &operator<<(QDataStream &stream, const Finding &finding)
{
    return stream << finding.command << finding.frames << finding.expected << finding.happened;
}

QDataStream &operator>>(QDataStream &stream, Finding &finding)
{
    return stream >> finding.command >> finding.frames >> finding.expected >> finding.happened;
}

} // namespace

Verdict::Verdict() : state(Passed), findingCount(0), seconds(0) {}

QDataStream &operator<<(QDataStream &stream, const Verdict &verdict)
{
    stream << qint32(verdict.state) << verdict.skipped << qint32(verdict.findingCount) << verdict.reasons
           << qint32(verdict.findings.size());
    for (const Finding &finding : verdict.findings)
        stream << finding;
    return stream;
}

QDataStream &operator>>(QDataStream &stream, Verdict &verdict)
{
    qint32 state = 0;
    qint32 count = 0;
    qint32 kept = 0;
    stream >> state >> verdict.skipped >> count >> verdict.reasons >> kept;
    verdict.state = static_cast<Verdict::State>(state);
    verdict.findingCount = count;
    for (qint32 i = 0; i < kept && stream.status() == QDataStream::Ok; ++i) {
        verdict.findings.emplace_back();
        stream >> verdict.findings.back();
    }
    return stream;
}

} // namespace kit
