#include "tests/support/driver_test.h"
#include "tests/support/little_memory.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>

// What a load keeps while it goes through the tags, of which a view may have any number.

namespace
{

size_t used = 0;
size_t mostUsed = 0;

void giveBack(void *memory)
{
    used -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

// These take the place of the library's for the whole program.

void *operator new(std::size_t size)
{
    void *memory = std::malloc(std::max<std::size_t>(size, 1));
    if (memory == nullptr)
        std::abort();
    used += malloc_usable_size(memory);
    mostUsed = std::max(mostUsed, used);
    return memory;
}

void operator delete(void *memory) noexcept
{
    giveBack(memory);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept
{
    giveBack(memory);
}

namespace
{

// 10^digits rows, made from a table of ten.
QStringList viewOfTags(const char *address, int digits)
{
    QStringList statements;
    statements << QLatin1String("DROP TABLE custom_tag_table") << QLatin1String("CREATE TABLE ten (d)");
    for (int d = 0; d < 10; ++d)
        statements << QString::fromLatin1("INSERT INTO ten VALUES (%1)").arg(d);
    QStringList tables;
    for (int i = 0; i < digits; ++i)
        tables << QString::fromLatin1("ten t%1").arg(i);
    statements << QString::fromLatin1(
                      "CREATE VIEW custom_tag_table AS SELECT %1 AS address, 1 AS connector_id FROM %2")
                      .arg(QLatin1String(address), tables.join(QLatin1String(", ")));
    return statements;
}

// The most memory that objects of the driver took while it loaded the project, in bytes.
size_t mostWhileLoading()
{
    const SleepRecorder pauses;
    ScriptedChannel channel;
    DriverModbusRtuSlaveOverTcp driver;
    const CommunicatorCommand unsupported = makeCommand(EightByteItem, QString(), 0);
    const size_t before = used;
    mostUsed = used;
    driver.read(&channel, unsupported);
    EXPECT_EQ(driver.getLastError(), QLatin1String("unsupported data type: "));
    return mostUsed - before;
}

size_t mostWithTags(const char *address, int digits)
{
    const ProjectDatabase project(QStringList(), 1);
    ProjectDatabase::execute(viewOfTags(address, digits));
    return mostWhileLoading();
}

} // namespace

TEST(LoadingMemory, DoesNotGrowWithTheRows)
{
    const char *const address = "'DO' || (t0.d * 10 + t1.d + 1)";
    const size_t few = mostWithTags(address, 2);
    EXPECT_LE(mostWithTags(address, 5), few + 1024);
}

// The rows that Qt may keep are not objects of the driver: a million of them take more than there is.
TEST(LoadingMemory, QtKeepsNoRows)
{
    const ProjectDatabase project(QStringList(), 1);
    ProjectDatabase::execute(viewOfTags("'DO' || (t0.d * 10 + t1.d + 1)", 6));
    inLittleMemory(32, [] {
        mostWhileLoading();
        return testing::Test::HasFailure() ? "the project was not loaded" : "";
    });
}

// 8 KB for the addresses of an area, and as much again for other ends.
TEST(LoadingMemory, EightKilobytesForEachStationAndArea)
{
    const size_t none = mostWithTags("'HR1'", 1);
    EXPECT_LE(mostWithTags("'DO' || (t0.d * 7000 + 1)", 1), none + 9 * 1024);
    EXPECT_LE(mostWithTags("t0.d || '-DI' || (t0.d * 7000 + 1)", 1), none + 10 * 9 * 1024);
}
