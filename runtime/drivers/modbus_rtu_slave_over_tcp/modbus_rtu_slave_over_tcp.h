#pragma once

#include "drivers/modbus_bit_set.h"
#include "drivers/qt_lines.h"
#include "host/driver_interface.h"

#include <QMap>
#include <QPointer>

class QSqlDatabase;

/// The driver of one link to Modbus slaves that speak RTU framing over a TCP byte stream.
///
/// Every operation blocks the calling thread until its exchanges, retries and pauses are over. The object
/// takes no lock: one thread at a time, and hasError() and getLastError() are about the last transaction.
class DriverModbusRtuSlaveOverTcp : public QObject, public DriverInterface
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID "com.brenwick.drivers.DriverInterface/1.1")

public:
    /// Opens nothing; the project database is read with the first command.
    DriverModbusRtuSlaveOverTcp();

    int totalSize() override;
    bool write(AbstractDeviceInterface *device, const CommunicatorCommand &command,
               const QByteArray &data) override;
    QByteArray read(AbstractDeviceInterface *device, const CommunicatorCommand &command) override;
    bool initialize(AbstractDeviceInterface *device) override;
    bool validation(const QString &address) override;
    QString name() override;
    QString vender() override;
    QString getVersionNumber() override;
    DeviceSetting *getDefaultSerialDeviceSetting() override;
    DriverSetting *getDefaultDriverSetting() override;
    QString getStringBasedDefaultDriverSetting() override;
    int supportedCommunicationFlags() override;
    void setDebugMode(bool on) override;
    int getBlockAccessSize() override;
    int getBitBlockAccessSize() override;
    bool hasError() override;
    QString getLastError() override;
    QObject *getThisObject() override;
    bool isConnected(AbstractDeviceInterface *device) override;

private:
    /// The longest reply: the 256 bytes of 2008 bits, and one to spare.
    typedef unsigned char Reply[257];

    // Error state: error_state.cpp
    void clearError();
    void setCommError(const QString &text);
    bool fail(const QString &text);
    bool fail(const char *text);
    bool fail(const char *text, int number);
    bool refuseWrite(const char *item, const QString &target);
    void appendCmdToReadCommError(unsigned char station, const CommunicatorCommand &command);
    void appendCmdToWriteCommError(unsigned char station, const CommunicatorCommand &command);

    // One exchange: exchange.cpp
    bool exchange(AbstractDeviceInterface *device, const QByteArray &request, int restSize, Reply &reply);
    bool confirmed(AbstractDeviceInterface *device, const QByteArray &request);
    bool checkMinADU(AbstractDeviceInterface *device, const char *reply, int received);
    bool checkException(const char *reply, unsigned char function);
    bool failWithException(unsigned char code);
    bool checkCRC(const unsigned char *reply, int size);
    bool failAndClose(AbstractDeviceInterface *device, const QString &text);
    bool failAndClose(AbstractDeviceInterface *device, const char *text);

    // Attempts and dispatch: retry_loop.cpp, retry_loop.h, read.cpp, write.cpp
    bool canStart(AbstractDeviceInterface *device, const CommunicatorCommand &command, const char *refusal);
    bool refuseLongAddress(const CommunicatorCommand &command, const char *refusal);
    template <typename Transfer>
    bool attempt(AbstractDeviceInterface *device, const CommunicatorCommand &command, Transfer transfer);
    bool canTransfer(AbstractDeviceInterface *device, const CommunicatorCommand &command);
    QByteArray readItems(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                         const QByteArray &area, unsigned short offset, unsigned char bit);
    bool writeItems(AbstractDeviceInterface *device, const CommunicatorCommand &command,
                    const QByteArray &data, const QByteArray &area, unsigned short offset, unsigned char bit);

    // Readers return the data, or nothing after storing the reason: read_registers.cpp, read_bits.cpp
    QByteArray readWords(AbstractDeviceInterface *device, const QByteArray &area, unsigned short offset,
                         int count);
    QByteArray readDWords(AbstractDeviceInterface *device, const QByteArray &area, unsigned short offset,
                          int count, bool swapWords);
    QByteArray readBytes(AbstractDeviceInterface *device, const QByteArray &area, unsigned short offset,
                         int count);
    QByteArray readIRHRbits(AbstractDeviceInterface *device, const QByteArray &area, unsigned short offset,
                            unsigned char bit, int count);
    bool readRegisters(AbstractDeviceInterface *device, const char *item, const QByteArray &area,
                       unsigned short offset, quint64 registers, Reply &reply);
    QByteArray readDIDOs(AbstractDeviceInterface *device, const QByteArray &area, unsigned short offset,
                         int count);
    QByteArray readBytesFromDI(AbstractDeviceInterface *device, unsigned short offset, int count);
    QByteArray readBytesFromDO(AbstractDeviceInterface *device, unsigned short offset, int count);
    const ModbusBitSet *usedBitsOf(AbstractDeviceInterface *device, const char *area);
    QByteArray readUsedBits(AbstractDeviceInterface *device, const QByteArray &area, const UShortVector &used,
                            unsigned short offset, int count);
    QByteArray refuseBitRead(qint64 count, const QByteArray &area, unsigned short offset);

    // Writers return whether the slave confirmed everything, false after storing the reason:
    // write_registers.cpp, write_coils.cpp, write_register_bits.cpp
    bool writeWords(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &data);
    bool writeDWords(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &data,
                     bool swapWords);
    bool writeBytes(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &data);
    bool writeRegistersWithFN16(AbstractDeviceInterface *device, unsigned short offset,
                                const QByteArray &registers);
    bool writeWordWithFN6(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &value);
    bool writeWordsWithFN6(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &data);
    bool writeDWordsWithFN6(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &data,
                            bool swapWords);
    bool writeBytesWithFN6(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &data);
    bool writeRegistersWithFN6(AbstractDeviceInterface *device, unsigned short offset,
                               const QByteArray &registers);
    bool checkRegisterRange(const char *item, unsigned short offset, int size);
    bool writeCoils(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &bits,
                    int count);
    bool writeCoilsWithFN5(AbstractDeviceInterface *device, unsigned short offset, const QByteArray &bits,
                           int count);
    bool checkCoilRange(unsigned short offset, int count);
    bool writeHRbit(AbstractDeviceInterface *device, unsigned short offset, unsigned char bitIndex,
                    const QByteArray &bits, int count);
    bool writeHRbitWithFN6(AbstractDeviceInterface *device, unsigned short offset, unsigned char bitIndex,
                           const QByteArray &bits, int count);
    QByteArray registersWithBits(AbstractDeviceInterface *device, unsigned short offset,
                                 unsigned char bitIndex, const QByteArray &bits, int count);

    // The project's database and the bit addresses it uses: project_database.cpp
    bool createDBConnection();
    QSqlDatabase registerConnection();
    void bringConnectionHere();
    bool readDB(const QString &devStr);
    bool initValidBitAddressesMap(int connectorId, unsigned char defaultStation);

    bool errorFlag;
    bool debugMode;
    bool dbConnected;
    bool dbLoaded;
    QString lastError;
    QString connectionName;
    QMap<unsigned char, ModbusBitSet> validBitAddressesMap;
    /// What the process keeps of the connection that this object registered; null when it registered none, or
    /// when somebody removed that.
    QPointer<QObject> ownConnection;
};

/// A new driver object, owned by the caller.
extern "C" Q_DECL_EXPORT DriverInterface *CreateDriver();
