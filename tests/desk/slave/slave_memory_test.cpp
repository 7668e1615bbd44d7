#include "desk/slave/slave_memory.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTextStream>

#include <ostream>

namespace
{

class SlaveMemoryFile : public testing::Test
{
protected:
    // Loads a file of this text; the error without the path in front, or "" when it was taken.
    QString load(const QByteArray &text)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        const Result<> loaded = memory.loadFile(path);
        EXPECT_EQ(loaded.isGood(), loaded.errorText().isEmpty());
        return loaded.errorText().mid(loaded ? 0 : path.size() + 1);
    }

    // "1-HR5=7 ..." in the order of the file.
    std::string values() const
    {
        QStringList texts;
        for (const SlaveMemory::Value &value : memory.values())
            texts.append(QStringLiteral("%1-%2%3=%4")
                             .arg(value.station)
                             .arg(areaName(value.area))
                             .arg(value.offset + 1)
                             .arg(value.value));
        return texts.join(QLatin1Char(' ')).toStdString();
    }

    QTemporaryDir folder;
    QString path = folder.filePath("values.txt");
    SlaveMemory memory;
};

TEST_F(SlaveMemoryFile, TakesValues)
{
    EXPECT_EQ("", load("HR100 = 1 -2 0x1F # three registers\n"
                       "\n"
                       "# nothing\n"
                       "  2-do1=1, 0,1\r\n"
                       "IR65536 = 65535\n"
                       "DI1 = 1"));
    EXPECT_EQ("0-HR100=1 0-HR101=65534 0-HR102=31 2-DO1=1 2-DO2=0 2-DO3=1 0-IR65536=65535 0-DI1=1", values());
}

TEST_F(SlaveMemoryFile, TakesAsManyValuesAsAddresses)
{
    EXPECT_EQ("", load("HR1..3 = 1 2 3\n2-DO5..6 = 1 0\n"));
    EXPECT_EQ("0-HR1=1 0-HR2=2 0-HR3=3 2-DO5=1 2-DO6=0", values());
}

TEST_F(SlaveMemoryFile, TakesHoles)
{
    EXPECT_EQ("", load("hole IR200..299\nhole 3-DO7\n"));
    EXPECT_FALSE(memory.isHole(1, Area::InputRegisters, 0, 198));
    EXPECT_TRUE(memory.isHole(1, Area::InputRegisters, 0, 199));
    EXPECT_TRUE(memory.isHole(1, Area::InputRegisters, 298, 400));
    EXPECT_FALSE(memory.isHole(1, Area::InputRegisters, 299, 400));
    EXPECT_FALSE(memory.isHole(1, Area::HoldingRegisters, 0, 400));
    EXPECT_TRUE(memory.isHole(3, Area::Coils, 6, 6));
    EXPECT_FALSE(memory.isHole(2, Area::Coils, 6, 6));
}

TEST_F(SlaveMemoryFile, SaysWhatIsWrongAndWhere)
{
    EXPECT_EQ("2: \"XX1\" is no address", load("HR1 = 1\nXX1 = 1\n").toStdString());
    EXPECT_EQ("1: \"HR0\" is no address", load("HR0 = 1").toStdString());
    EXPECT_EQ("1: \"HR65537\" is no address", load("HR65537 = 1").toStdString());
    EXPECT_EQ("1: \"HR1..2\" are 2 addresses; expected as many values, and not 1",
              load("HR1..2 = 1").toStdString());
    EXPECT_EQ("1: \"256-HR1\" is no address", load("256-HR1 = 1").toStdString());
    EXPECT_EQ("1: no value", load("HR1 =").toStdString());
    EXPECT_EQ("1: no value", load("HR1").toStdString());
    EXPECT_EQ("1: \"65536\" is no value for HR", load("HR1 = 65536").toStdString());
    EXPECT_EQ("1: \"-32769\" is no value for HR", load("HR1 = -32769").toStdString());
    EXPECT_EQ("1: \"1.5\" is no value for HR", load("HR1 = 1.5").toStdString());
    EXPECT_EQ("1: \"2\" is no value for DO", load("DO1 = 2").toStdString());
    EXPECT_EQ("1: \"-1\" is no value for DI", load("DI1 = -1").toStdString());
    EXPECT_EQ("1: values beyond address 65536", load("HR65536 = 1 2").toStdString());
    EXPECT_EQ("1: \"HR9..8\" is no range of addresses", load("hole HR9..8").toStdString());
    EXPECT_EQ("1: \"HR\" is no range of addresses", load("hole HR").toStdString());
}

TEST_F(SlaveMemoryFile, MissingFile)
{
    const Result<> loaded = memory.loadFile(folder.filePath("none"));
    EXPECT_FALSE(loaded);
    EXPECT_TRUE(loaded.errorText().startsWith(folder.filePath("none") + ": "));
}

} // namespace
