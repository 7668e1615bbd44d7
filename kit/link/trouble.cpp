#include "kit/link/trouble.h"

namespace kit
{

namespace
{

Trouble named(int exchange, const QString &name)
{
    Trouble trouble;
    trouble.name = name;
    trouble.exchange = exchange;
    trouble.gap = 0;
    return trouble;
}

} // namespace

Trouble silence(int exchange)
{
    return otherReply(exchange, QLatin1String("no reply"), QByteArray());
}

Trouble otherReply(int exchange, const QString &name, const QByteArray &reply)
{
    return changedReply(exchange, name, [reply](const QByteArray & /*reply*/) { return reply; });
}

Trouble changedReply(int exchange, const QString &name,
                     const std::function<QByteArray(const QByteArray &reply)> &change)
{
    Trouble trouble = named(exchange, name);
    trouble.reply = change;
    return trouble;
}

Trouble cutReply(int exchange, int size)
{
    return changedReply(exchange, QString::fromLatin1("a reply that ends after %1 bytes").arg(size),
                        [size](const QByteArray &reply) { return reply.left(size); });
}

Trouble lateReply(int exchange, int size)
{
    Trouble trouble = named(
        exchange, QString::fromLatin1("a reply that goes on after the time-out, behind %1 bytes").arg(size));
    trouble.gap = size;
    return trouble;
}

Trouble flippedBit(int exchange, int bit)
{
    const QString name =
        QString::fromLatin1("a reply with bit %1 of byte %2 flipped").arg(bit % 8).arg(bit / 8);
    return changedReply(exchange, name, [bit](QByteArray reply) {
        reply[bit / 8] = static_cast<char>(reply.at(bit / 8) ^ (1 << bit % 8));
        return reply;
    });
}

Trouble shortSend(int exchange, int sent)
{
    Trouble trouble = named(exchange, QString::fromLatin1("a send that answers %1").arg(sent));
    trouble.sent = [sent]() { return sent; };
    return trouble;
}

Trouble failedRead(int exchange, int part, int result)
{
    Trouble trouble =
        named(exchange, QString::fromLatin1("read %1 of the reply answers %2").arg(part + 1).arg(result));
    trouble.received = [part, result](int present, int &answer) {
        if (present == part)
            answer = result;
        return present == part;
    };
    return trouble;
}

} // namespace kit
