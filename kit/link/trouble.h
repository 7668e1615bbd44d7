#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace kit
{

/// Something that goes wrong with a command, in the same place of each attempt.
struct Trouble {
    QString name;
    /// At which request of the attempt, counted from 0.
    int exchange;
    /// What becomes of the slave's reply.
    std::function<QByteArray(const QByteArray &reply)> reply;
    /// After how many bytes of the reply the time-out passes before the rest comes; 0: nowhere.
    int gap;
    /// What writeData() answers.
    std::function<int()> sent;
    /// What readData() answers for part \a part of the reply, counted from 0; true when it is \a result.
    std::function<bool(int part, int &result)> received;
};
using Troubles = std::vector<Trouble>;

/// All that is sent is lost.
Trouble silence(int exchange);
/// The slave sends \a reply, whatever was asked.
Trouble otherReply(int exchange, const QString &name, const QByteArray &reply);
/// The reply as \a change makes it.
Trouble changedReply(int exchange, const QString &name,
                     const std::function<QByteArray(const QByteArray &reply)> &change);
/// The reply ends after \a size bytes.
Trouble cutReply(int exchange, int size);
/// What comes after \a size bytes of the reply comes after the time-out.
Trouble lateReply(int exchange, int size);
/// Bit \a bit of the reply, counted from the lowest of its first byte, is the other one.
Trouble flippedBit(int exchange, int bit);
/// writeData() answers \a sent, whatever it was given.
Trouble shortSend(int exchange, int sent);
/// Part \a part of the reply is read with this \a result, whatever came.
Trouble failedRead(int exchange, int part, int result);

} // namespace kit
