#pragma once

#include "desk/doctor/diagnosis.h"
#include "desk/doctor/examinations/examination.h"
#include "desk/wire/rtu_frame.h"

/// Observations that a test writes down, of station 1, which answers.
class Seen
{
public:
    static constexpr qint64 Millisecond = 1000;

    Seen()
    {
        seen.working = 1;
        connection(0);
    }

    /// A connection that was opened then; one that was not when that is -1.
    Connection &connection(qint64 openedAt)
    {
        seen.connections.emplace_back();
        seen.connections.back().openedAt = openedAt;
        return seen.connections.back();
    }

    Seen &answer(qint64 latency, const QByteArray &values = QByteArray(16, '\1'))
    {
        return answer(read(8), latency, values);
    }
    Seen &answer(const QByteArray &request, qint64 latency, const QByteArray &values)
    {
        Asked &asked = silent(request);
        asked.result = AskResult::Answered;
        asked.reply = withCrc(request.left(2) + static_cast<char>(values.size()) + values);
        asked.firstAt = asked.repliedAt = asked.sentAt + latency;
        asked.segments.push_back({asked.repliedAt, asked.reply});
        return *this;
    }
    Seen &spoilt(const QByteArray &bytes)
    {
        Asked &asked = brought(AskResult::Damaged, bytes);
        asked.reply = bytes;
        return *this;
    }
    Seen &silence()
    {
        silent(read(8));
        return *this;
    }
    Seen &refusal(int code) { return refusal(read(8), code); }
    Seen &refusal(const QByteArray &request, int code)
    {
        Asked &asked = silent(request);
        asked.result = AskResult::Refused;
        asked.reply = exceptionReply(request, code);
        return *this;
    }
    Seen &stray(qint64 at, const QByteArray &bytes, bool isFirst = false)
    {
        Stray stray;
        stray.at = at * Millisecond;
        stray.bytes = bytes;
        stray.isFirst = isFirst;
        stray.connection = static_cast<int>(seen.connections.size()) - 1;
        seen.strays.push_back(stray);
        return *this;
    }

    /// A sample that brought something.
    Asked &brought(AskResult result, const QByteArray &bytes)
    {
        Asked &asked = silent(read(8));
        asked.result = result;
        asked.segments.push_back({asked.sentAt, bytes});
        return asked;
    }
    /// A sample that brought nothing, a second after the one before.
    Asked &silent(const QByteArray &request)
    {
        Asked asked;
        asked.purpose = Purpose::Sample;
        asked.request = request;
        asked.sentAt = m_now += 1000 * Millisecond;
        seen.asked.push_back(asked);
        return seen.asked.back();
    }

    static QByteArray reply(const QByteArray &values)
    {
        return withCrc(QByteArray::fromHex("0103") + static_cast<char>(values.size()) + values);
    }
    static QByteArray read(int count) { return readRequest(1, Area::HoldingRegisters, 0, count); }

    Observations seen;

private:
    qint64 m_now = 0;
};

inline Judgement judge(const Examination &examination, const Seen &seen, const DoctorOptions &options = {})
{
    return examination.judge(seen.seen, options);
}

inline QStringList namesOf(const Findings &findings)
{
    QStringList names;
    for (const Finding &finding : findings)
        names += finding.name();
    return names;
}

inline QStringList faultsOf(const Judgement &judgement)
{
    Findings faults;
    std::copy_if(judgement.findings.begin(), judgement.findings.end(), std::back_inserter(faults),
                 [](const Finding &finding) { return finding.isFault(); });
    return namesOf(faults);
}
