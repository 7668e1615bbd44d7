#include "tests/support/message_handler.h"

#include <QString>
#include <QtGlobal>

namespace
{

MessageTaker currentTaker = nullptr;
QtMsgHandler previous = nullptr;

void take(QtMsgType /*type*/, const char *text)
{
    currentTaker(QString::fromLocal8Bit(text));
}

} // namespace

void divertMessages(MessageTaker taker)
{
    currentTaker = taker;
    previous = qInstallMsgHandler(take);
}

void restoreMessages()
{
    qInstallMsgHandler(previous);
}
