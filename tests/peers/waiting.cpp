#include "tests/peers/waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

bool waitUntil(const std::function<bool()> &condition, int milliseconds)
{
    const unsigned long pause = 5;
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(milliseconds))
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(pause);
    }
    return true;
}
