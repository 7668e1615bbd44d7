#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>
#include <map>

// Replies whose bytes are not what was sent: how many, and where.

namespace
{

enum class Place { Beginning, End, Anywhere };

// Of short replies every byte is near an edge, and of few replies all may lie there by chance.
const int ShortestTelling = 12;
const int FewestTold = 3;

const int EdgeSize = 3; // station, function and byte count; or the CRC and a byte before it

std::vector<const Asked *> spoiltIn(const Observations &seen)
{
    std::vector<const Asked *> found;
    for (const Asked &one : seen.asked) {
        const bool isTold = one.purpose != Purpose::Service && one.purpose != Purpose::Length;
        const bool isItsOwn = seen.working < 0 || one.station() == seen.working;
        if (isTold && isItsOwn && seen.isSpoilt(one))
            found.push_back(&one);
    }
    return found;
}

// What came in place of the reply; the copy of the request that an echoing line puts in front belongs not to
// it.
QByteArray bytesOf(const Asked &asked)
{
    const QByteArray received = asked.received();
    return asked.isEchoed && received.startsWith(asked.request) ? received.mid(asked.request.size())
                                                                : received;
}

// The reply that the same request got most often.
QByteArray rightReplyTo(const QByteArray &request, const Observations &seen)
{
    std::map<QByteArray, int> counts;
    for (const Asked &one : seen.asked) {
        if (one.request == request && one.isAnswer())
            ++counts[one.reply];
    }
    const auto most = std::max_element(counts.begin(), counts.end(), [](const auto &left, const auto &right) {
        return left.second < right.second;
    });
    return most == counts.end() ? QByteArray() : most->first;
}

int commonPrefix(const QByteArray &left, const QByteArray &right)
{
    int size = 0;
    while (size < left.size() && size < right.size() && left.at(size) == right.at(size))
        ++size;
    return size;
}

int commonSuffix(const QByteArray &left, const QByteArray &right)
{
    int size = 0;
    while (size < left.size() && size < right.size() &&
           left.at(left.size() - 1 - size) == right.at(right.size() - 1 - size))
        ++size;
    return size;
}

Place placeOf(const QByteArray &bytes, const QByteArray &right)
{
    const int size = int(right.size());
    const int prefix = commonPrefix(bytes, right);
    const int suffix = commonSuffix(bytes, right);
    if (bytes.size() != right.size()) {
        const int most = int(std::min(bytes.size(), right.size())) - EdgeSize;
        if (prefix >= most && prefix > suffix)
            return Place::End;
        return suffix >= most && suffix > prefix ? Place::Beginning : Place::Anywhere;
    }
    if (suffix >= size - EdgeSize)
        return Place::Beginning;
    return prefix >= size - EdgeSize ? Place::End : Place::Anywhere;
}

// All but a few lie there.
Place placeOf(const std::vector<const Asked *> &spoilt, const Observations &seen)
{
    std::map<Place, int> counts;
    int told = 0;
    for (const Asked *one : spoilt) {
        const QByteArray right = rightReplyTo(one->request, seen);
        if (right.size() < ShortestTelling)
            continue;
        ++counts[placeOf(bytesOf(*one), right)];
        ++told;
    }
    for (const Place place : {Place::Beginning, Place::End}) {
        if (told >= FewestTold && counts[place] * 10 >= told * 8)
            return place;
    }
    return Place::Anywhere;
}

bool isTooShort(const Asked *asked)
{
    return asked->reply.size() < replySizeFor(asked->request);
}

QStringList evidenceBeside(const std::vector<const Asked *> &spoilt, const Observations &seen)
{
    QStringList lines = evidenceOf(spoilt, 3);
    const QByteArray right = rightReplyTo(spoilt.front()->request, seen);
    if (!right.isEmpty())
        lines += QStringLiteral("    right: ") + QString::fromLatin1(right.toHex(' ').toUpper());
    return lines;
}

FindingKind kindOf(Place place)
{
    switch (place) {
    case Place::Beginning: return FindingKind::BeginningDamaged;
    case Place::End: return FindingKind::EndDamaged;
    case Place::Anywhere: break;
    }
    return FindingKind::AnywhereDamaged;
}

QString nameOf(Place place)
{
    switch (place) {
    case Place::Beginning: return QStringLiteral("at their beginning");
    case Place::End: return QStringLiteral("at their end");
    case Place::Anywhere: break;
    }
    return QStringLiteral("anywhere in them");
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    const std::vector<const Asked *> spoilt = spoiltIn(seen);
    if (spoilt.empty())
        return judgement;
    if (seen.working < 0) {
        judgement.remedy.worksNow = false;
        const bool isReply = std::all_of(spoilt.begin(), spoilt.end(),
                                         [](const Asked *one) { return one->result == AskResult::Damaged; });
        const bool isCut = std::all_of(spoilt.begin(), spoilt.end(), isTooShort);
        if (isReply && spoilt.size() >= FewestTold)
            judgement.add(isCut ? FindingKind::EndDamaged : FindingKind::AnywhereDamaged,
                          QStringLiteral("every reply is %1")
                              .arg(isCut ? QStringLiteral("cut") : QStringLiteral("damaged")),
                          evidenceOf(spoilt));
        else
            judgement.add(FindingKind::Garbled,
                          QStringLiteral("something comes, and nothing of it is a frame"),
                          evidenceOf(spoilt));
        return judgement;
    }
    const size_t replies = seen.timed().size() + spoilt.size();
    const double rate = static_cast<double>(spoilt.size()) / static_cast<double>(replies);
    const int retries = retriesFor(rate);
    if (retries > options.exchange.retries)
        judgement.remedy.retries = retries;
    const Place place = placeOf(spoilt, seen);
    judgement.add(
        kindOf(place),
        QStringLiteral("%1 of %2 replies are damaged %3").arg(spoilt.size()).arg(replies).arg(nameOf(place)),
        evidenceBeside(spoilt, seen));
    return judgement;
}

} // namespace

Examination damageExamination()
{
    return {"comparing replies", nullptr, judge};
}
