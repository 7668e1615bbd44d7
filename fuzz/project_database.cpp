// Whole project databases: any bytes lie where the project belongs. The driver reads them or says one of
// three texts, and leaves the file as it is.

#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"
#include "fuzz/support/check.h"
#include "fuzz/support/project_file.h"
#include "fuzz/support/slave_channel.h"
#include "tests/doubles/command.h"

#include <QFile>

using namespace fuzz;

namespace
{

const QStringList Sidecars = {QStringLiteral("-journal"), QStringLiteral("-shm"), QStringLiteral("-wal")};

// What SQLite left beside the file, which is removed.
bool removeSidecars()
{
    bool found = false;
    for (const QString &ending : Sidecars)
        found = QFile::remove(projectPath() + ending) || found;
    return found;
}

// A file in write-ahead mode cannot be read without its index file, so SQLite makes one where it may.
bool isInWriteAheadMode(const QByteArray &bytes)
{
    const int readVersion = 19;
    return bytes.size() > readVersion && bytes.at(readVersion) == 2;
}

QByteArray projectBytes()
{
    QFile file(projectPath());
    FUZZ_CHECK(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

bool isKnownFailure(const QString &text)
{
    return text == QLatin1String("can not open database") ||
           text == QLatin1String("failed to get default station id") ||
           text == QLatin1String("failed to initialize valid bit addresses table");
}

// Two commands, since the second one finds the connection that the first one opened.
void readTwice()
{
    DriverModbusRtuSlaveOverTcp driver;
    for (int i = 0; i < 2; ++i) {
        SlaveChannel channel;
        const QByteArray data = driver.read(&channel, makeCommand(WordItem, QStringLiteral("HR1"), 1));
        if (driver.hasError()) {
            FUZZ_CHECK(isKnownFailure(driver.getLastError()));
            FUZZ_CHECK(data.isEmpty() && channel.exchanges.isEmpty());
        } else {
            FUZZ_CHECK(data == QByteArray(2, '\0') && channel.exchanges.size() == 1);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    writeProjectBytes(bytes);
    readTwice();
    forgetDriverConnections();
    FUZZ_CHECK(projectBytes() == bytes);
    FUZZ_CHECK(!removeSidecars() || isInWriteAheadMode(bytes));
    return 0;
}
