#include "tests/support/message_capture.h"

#include "tests/support/message_handler.h"

namespace
{

QList<QString> &kept()
{
    static QList<QString> messages;
    return messages;
}

void keep(const QString &text)
{
    kept().append(text.endsWith(QLatin1Char(' ')) ? text.left(text.size() - 1) : text);
}

} // namespace

MessageCapture::MessageCapture()
{
    kept().clear();
    divertMessages(keep);
}

MessageCapture::~MessageCapture()
{
    restoreMessages();
}

QList<QString> MessageCapture::lines()
{
    return kept();
}
