#pragma once

#include "desk/doctor/observing/observations.h"

#include <QStringList>

#include <optional>

/// What an examination can come to, in the order in which it is said: first what keeps values away.
enum class FindingKind {
    HostUnknown,
    NobodyListens,
    Unreachable,
    ClosedAtOnce,
    SlotHeld,
    ModbusTcp,
    ModbusAscii,
    Tls,
    Http,
    Ssh,
    TextBanner,
    ConnectionEnds,
    WrongStation,
    StationAbsent,
    AnswersAsOther,
    Silent,
    LateAnswers,
    NeedsPause,
    LostReplies,
    ConnectionDrops,
    BeginningDamaged,
    EndDamaged,
    AnywhereDamaged,
    Garbled,
    FunctionUnknown,
    AreaEmpty,
    AddressMissing,
    DeviceRefuses,
    OffByOne,
    WordOrder,
    OtherArea,
    Scaled,
    AmbiguousValues,
    OtherValues,
    OtherMaster,
    Echo,
    StrayBytes,
    Gaps,
    Registration,
    Heartbeat,
    IdleClose,
    Timing,
    Areas,
    LargestRequest,
    Functions,
    OutOfTime
};

/// What a finding says of the line.
enum class Weight {
    Explains, ///< a fault, and it is known what to change
    Open,     ///< a fault that is seen and not explained
    Remark    ///< no fault
};

/// What is known of a kind of finding before anything is seen.
struct FindingInfo {
    FindingKind kind;
    const char *name; ///< for programs
    Weight weight;
    const char *told;   ///< how it is told from others
    const char *change; ///< what to do
};
const std::vector<FindingInfo> &findingInfos();
const FindingInfo &infoOf(FindingKind kind);
QString nameOf(Weight weight);

struct Finding {
    FindingKind kind;
    QString sentence;     ///< what is the case, without a capital letter and without a full stop
    QStringList evidence; ///< frames and times, a line each
    /// What to do besides what FindingInfo says.
    QString change;

    QString name() const;
    bool isFault() const { return infoOf(kind).weight != Weight::Remark; }
};
using Findings = std::vector<Finding>;

/// How the command that works differs from the one that was meant; what is not set stays.
struct Remedy {
    std::optional<int> station;
    std::optional<int> timeout; ///< milliseconds
    std::optional<int> delay;   ///< milliseconds
    std::optional<int> retries;
    int shift = 0; ///< of all addresses
    QString order; ///< "BADC"; empty where it stays
    std::optional<Area> area;
    bool worksNow = true; ///< without a change on the other side
};

/// So many retries leave one exchange in a thousand undone, when \a share of the attempts fail.
int retriesFor(double share);

struct Judgement {
    Findings findings;
    Remedy remedy;
    bool explainsAll = false; ///< nothing further need be asked

    void add(FindingKind kind, const QString &sentence, const QStringList &evidence,
             const QString &change = {})
    {
        findings.push_back({kind, sentence, evidence, change});
    }
};
