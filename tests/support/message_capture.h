#pragma once

#include <QList>
#include <QString>

/// Keeps what goes to Qt's debug output while it lives, one entry a message. Not more than one at a time.
class MessageCapture
{
public:
    MessageCapture();
    ~MessageCapture();
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    /// The messages so far. Qt 4 puts a blank after the last item of a line, which is taken off here.
    static QList<QString> lines();
};
