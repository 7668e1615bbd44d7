#pragma once

#include <QObject>

class QSocketNotifier;

/// While one of these exists SIGINT, SIGTERM and SIGHUP end nothing: they set raised() and emit stop(). At
/// most one at a time.
class StopSignal : public QObject
{
    Q_OBJECT

public:
    explicit StopSignal(QObject *parent = nullptr);
    ~StopSignal() override;

    /// Whether one of the signals came since the object was made. For loops that block.
    static bool raised();
    /// Waits until the time is over or one of the signals comes.
    void wait(qint64 milliseconds) const;

signals:
    void stop();

private:
    void drainPipe();

    QSocketNotifier *m_notifier;
};
