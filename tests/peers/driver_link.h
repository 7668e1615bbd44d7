#pragma once

#include "desk/link/loaded_driver.h"
#include "desk/link/tcp_channel.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

/// Item kinds of commands.
enum : int { Bits = 0, Bytes = 1, Words = 2, DoubleWords = 3 };

/// The settings of a channel to a port of this machine, without retries, and without settling, so that
/// nothing is sent but the driver's frames.
ChannelSettings channelTo(quint16 port, int timeoutMs = 150);

/// Lays a project database beside this program: one Ethernet link to station 1 with these tags. Whether that
/// worked.
bool layProjectBesideProgram(const QStringList &tags = QStringList());

/// A driver from the plug-in file and a real channel: a link as a host has it. Wants a project database
/// beside the program.
class DriverLink
{
public:
    explicit DriverLink(const ChannelSettings &settings);

    /// Empty on failure.
    QByteArray read(int dataType, int count, const QString &address);
    bool write(int dataType, int count, const QString &address, const QByteArray &data);
    /// The words that a read brought; none on failure.
    std::vector<int> readWords(const QString &address, int count = 1);
    bool writeWords(const QString &address, const std::vector<int> &values);

    /// The text of the last failure without the command's details; "" after a success.
    QString error();

    TcpChannel &channel() { return tcp; }

private:
    TcpChannel tcp;
    LoadedDriver plugin;
    std::unique_ptr<DriverInterface> driver;
};
