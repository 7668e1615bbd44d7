#pragma once

#include <QByteArray>
#include <QList>

/// A part of what came in front of a reply.
struct SkippedPart {
    enum Kind {
        Noise,            ///< bytes that are no frame
        OtherFrame,       ///< a whole frame that another master sent, or got
        RequestCopy,      ///< the request itself, as a line that echoes returns it
        OtherConfirmation ///< confirms another write of the same station
    };

    Kind kind;
    int start;
    int size;
};

/// Finds the reply to one request in what a line brings: a frame of the station asked with the function
/// asked, or its exception. What lies in front of it is skipped.
class ReplyFinder
{
public:
    enum Verdict {
        NotYet,
        Answer,      ///< whole, and as long as the request lets it be
        OtherAnswer, ///< whole, of the station and function asked, but of another length
        Damaged      ///< station and function asked, and a wrong CRC
    };

    /// Whether the reply to \a request can be told: a frame of a function known to rtu_frame.h, and no
    /// broadcast.
    static bool canTell(const QByteArray &request);

    /// For nothing that can be told.
    ReplyFinder() : m_replySize(0), m_isEchoing(false), m_next(0), m_replyStart(-1) {}
    /// Where the line \a isEchoing, the reply to a write that equals its request is the second one that
    /// comes.
    ReplyFinder(const QByteArray &request, bool isEchoing);

    /// Judges all that has come since the request; \a stream only grows.
    Verdict search(const QByteArray &stream);
    /// The time is over: what begins like a reply counts as one that was cut.
    void giveUp(const QByteArray &stream);
    /// Where the reply begins; -1 for none.
    int replyStart() const { return m_replyStart; }
    /// Whether a right reply may be the request byte for byte, so that a copy cannot be told from it.
    bool mayReplyEqualRequest() const;
    /// Whether a driver that gets a part of this kind could take it for the reply.
    bool mayPassForReply(SkippedPart::Kind kind) const;
    /// What lies in front of the reply, or has come in its place; in order, and without gaps.
    const QList<SkippedPart> &parts() const { return m_parts; }

private:
    bool isReply(const QByteArray &frame) const;
    SkippedPart::Kind kindOf(const QByteArray &frame) const;
    bool isCopy(const QByteArray &frame, const QList<SkippedPart> &parts) const;
    bool beginsLikeReply(const QByteArray &stream, int start) const;
    template <typename Test>
    int findInNoise(Test passes) const;
    int damagedReplyStart(const QByteArray &stream) const;
    void cutPartsAt(int start);

    QByteArray m_request;
    int m_replySize;
    bool m_isEchoing;
    QList<SkippedPart> m_decided; // parts that no further byte changes
    int m_next;                   // after them
    QList<SkippedPart> m_parts;
    int m_replyStart;
};
