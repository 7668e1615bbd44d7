#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

/// Keeps what goes to Qt's debug output while it lives, one entry a message. Not more than one at a time.
class MessageCapture
{
public:
    MessageCapture() : previous(install(keep)) { kept().clear(); }
    ~MessageCapture() { install(previous); }
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    /// The messages so far. Qt 4 puts a blank after the last item of a line, which is taken off here.
    static QList<QString> lines() { return kept(); }

private:
    static QList<QString> &kept()
    {
        static QList<QString> messages;
        return messages;
    }

    static void note(const QString &text)
    {
        kept().append(text.endsWith(QLatin1Char(' ')) ? text.left(text.size() - 1) : text);
    }

#if QT_VERSION < 0x050000
    typedef QtMsgHandler Handler;
    static Handler install(Handler handler)
    {
        return qInstallMsgHandler(handler);
    }
    static void keep(QtMsgType /*type*/, const char *text)
    {
        note(QString::fromLocal8Bit(text));
    }
#else
    typedef QtMessageHandler Handler;
    static Handler install(Handler handler)
    {
        return qInstallMessageHandler(handler);
    }
    static void keep(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &text)
    {
        note(text);
    }
#endif

    Handler previous;
};
