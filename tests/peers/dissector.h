#pragma once

#include <QList>
#include <QStringList>

/// A frame as Wireshark's dissector for Modbus RTU over TCP sees it.
struct DissectedFrame {
    bool isQuery = false;
    bool isResponse = false;
    bool hasGoodCrc = false;
    bool isMalformed = false;
    int unit = -1;
    int function = -1;
};

/// Turns lines of a master's trace into a capture with text2pcap, and has tshark judge it. On failure
/// \a error says why.
QList<DissectedFrame> dissect(const QStringList &traceLines, QString &error);
