#pragma once

#include "tests/driverhost/support/host_program.h"

#include <QProcess>

const char *const PymodbusPython = "/usr/bin/python3";

/// A slave made of pymodbus in the distribution's Python: "rtu" or "socket" (Modbus/TCP) framing over TCP.
class PymodbusSlave
{
public:
    explicit PymodbusSlave(const QString &framing = QStringLiteral("rtu"))
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(PymodbusPython, {sourceFile("tests/driverhost/interop/pymodbus_slave.py"), framing});
        while (!process.canReadLine() && process.waitForReadyRead(60000))
            continue;
        slavePort = process.readLine().trimmed().toUShort();
    }

    ~PymodbusSlave()
    {
        process.closeWriteChannel();
        if (!process.waitForFinished(10000))
            process.kill();
        process.waitForFinished(10000);
    }
    PymodbusSlave(const PymodbusSlave &) = delete;
    PymodbusSlave &operator=(const PymodbusSlave &) = delete;

    /// 0 when it did not start.
    quint16 port() const { return slavePort; }

private:
    QProcess process;
    quint16 slavePort = 0;
};
