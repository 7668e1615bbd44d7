#pragma once

#include <QList>
#include <QPair>
#include <QString>

/// \file
/// The settings of a channel.

class QDataStream;

/// Kind of a channel. The host defines the values; the driver's default setting uses the one that is named.
enum device_type : int { DefaultDeviceType = 16 };

/// The physical channel of one link, as the host keeps it.
struct DeviceSetting {
    /// Stored as given.
    device_type type;
    /// Name of the port, such as "COM2" or "ETHERNET"; the project database is searched by it.
    QString deviceString;
    int baudrate; ///< Bits a second.
    int databits; ///< Bits a character.
    int stopbits; ///< A code, stored as given.
    int parity;   ///< A code, stored as given.
    /// Persisted, never printed.
    int auxValue;
    /// Neither persisted nor printed.
    QString auxText;
    /// -1 when not assigned.
    int linkId;
    /// Which of the sockets is the current one. The setters keep it in the list; a new list may leave it
    /// outside.
    int currentIpIndex;
    /// Endpoints (ip, port), in order.
    QList<QPair<QString, quint16>> sockets;

    /// All zero and empty, no link; something to read a stream into.
    DeviceSetting();
    /// No link, no sockets, auxiliary fields 0 and empty.
    DeviceSetting(device_type kind, const QString &device, int baud, int dataBits, int stopBits,
                  int parityCode);
    /// The same with the auxiliary fields.
    DeviceSetting(device_type kind, const QString &device, int baud, int dataBits, int stopBits,
                  int parityCode, int value, const QString &text);

    /// The ip of endpoint \a index, of the current one for -1; a null text outside the list.
    QString socketIP(int index) const;
    /// The port of endpoint \a index, of the current one for -1; 0 outside the list.
    unsigned short port(int index) const;
    /// Changes the ip of endpoint \a index, of the current one for -1, and keeps its port. Does nothing
    /// outside the list.
    void setSocketIP(const QString &ip, int index);
    /// Changes the port of endpoint \a index, of the current one for -1, and keeps its ip. Does nothing
    /// outside the list.
    void setPort(unsigned short number, int index);
    /// Makes endpoint \a index the current one. Does nothing outside the list.
    void setCurrentIPIndex(int index);
    /// Replaces all endpoints by (ip, port as decimal text); a text that is no port number gives port 0. The
    /// current index stays, even when the new list has no such entry.
    void setSocketData(const QList<QPair<QString, QString>> &data);
    /// Writes one line to the debug output: type: 16 string: "COM2" baudrate: 9600 databits: 8 stopbits: 0
    /// parity: 2 linkID: -1 current ip: "" current port: 0
    void dump() const;

private:
    QPair<QString, quint16> *socketAt(int index);
};

/// \relates DeviceSetting
/// In the stream's byte order: qint32 type, QString deviceString, qint32 baudrate, databits, stopbits,
/// parity, auxValue, linkId, currentIpIndex, then the number of sockets as qint32 and for each its ip
/// (QString) and port (16 bits). auxText is not persisted.
///
/// The current index is applied before the list is read, so it counts only when the list that the object held
/// before has such an entry. A stream that is too short leaves what Qt's operators leave, and its status says
/// so.
/// @{
QDataStream &operator<<(QDataStream &stream, const DeviceSetting &setting);
QDataStream &operator>>(QDataStream &stream, DeviceSetting &setting);
/// @}
