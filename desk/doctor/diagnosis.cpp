#include "desk/doctor/diagnosis.h"

#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/doctor/remedy.h"

#include <algorithm>

namespace
{

void observe(Examiner &examiner)
{
    for (const Examination &one : examinations()) {
        if (examiner.isCancelled())
            return;
        examiner.showProgress(QLatin1String(one.doing));
        if (one.observe != nullptr)
            one.observe(examiner);
        if (one.judge(examiner.seen(), examiner.options()).explainsAll)
            return;
    }
}

bool isFirst(const Finding &left, const Finding &right)
{
    return left.kind < right.kind;
}

} // namespace

// What was seen later can say more of what was judged before, so all is judged once more at the end.
Diagnosis diagnose(Examiner &examiner)
{
    observe(examiner);
    const Observations &seen = examiner.seen();
    Diagnosis diagnosis;
    diagnosis.target = examiner.options().target;
    diagnosis.wasCancelled = examiner.isCancelled();
    Remedy remedy;
    for (const Examination &one : examinations()) {
        const Judgement judgement = one.judge(seen, examiner.options());
        add(remedy, judgement.remedy);
        for (const Finding &finding : judgement.findings) {
            // What would have explained them was perhaps not asked any more.
            if (diagnosis.wasCancelled && infoOf(finding.kind).weight == Weight::Open)
                continue;
            (finding.isFault() ? diagnosis.faults : diagnosis.remarks).push_back(finding);
        }
        if (judgement.explainsAll)
            break;
    }
    std::stable_sort(diagnosis.faults.begin(), diagnosis.faults.end(), isFirst);
    if (seen.isOutOfTime)
        diagnosis.remarks.push_back(
            {FindingKind::OutOfTime,
             QStringLiteral("not everything was asked, since it would have taken more "
                            "than %1")
                 .arg(durationText(examiner.options().longestTime)),
             {},
             {}});
    diagnosis.worksNow = remedy.worksNow;
    diagnosis.command = commandFor(examiner.options(), remedy, seen);
    diagnosis.duration = examiner.now();
    examiner.disconnect();
    return diagnosis;
}

bool Diagnosis::isExplained() const
{
    return !wasCancelled && std::none_of(faults.begin(), faults.end(), [](const Finding &one) {
        return infoOf(one.kind).weight == Weight::Open;
    });
}

QString Diagnosis::verdict() const
{
    QStringList sentences;
    for (const Finding &one : faults)
        sentences += one.sentence;
    if (isHealthy())
        sentences += QStringLiteral("healthy: station %1 answers as it should").arg(target.station);
    if (wasCancelled)
        sentences.prepend(sentences.isEmpty() ? QStringLiteral("interrupted before anything was found")
                                              : QStringLiteral("interrupted"));
    const QString others = QStringList(sentences.mid(1)).join(QStringLiteral("; and "));
    QString text =
        others.isEmpty() ? sentences.front() : sentences.front() + QStringLiteral("; besides, ") + others;
    text[0] = text.at(0).toUpper();
    return text + QLatin1Char('.');
}

QString Diagnosis::commandText() const
{
    QStringList words;
    for (const QString &word : command)
        words += shellWord(word);
    return words.join(QLatin1Char(' '));
}
