#include "tests/support/message_handler.h"

#include <QString>
#include <QtGlobal>

namespace
{

MessageTaker currentTaker = nullptr;
QtMessageHandler previous = nullptr;

void take(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &text)
{
    currentTaker(text);
}

} // namespace

void divertMessages(MessageTaker taker)
{
    currentTaker = taker;
    previous = qInstallMessageHandler(take);
}

void restoreMessages()
{
    qInstallMessageHandler(previous);
}
