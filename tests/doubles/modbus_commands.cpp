#include "tests/doubles/modbus_commands.h"

#include "drivers/tools/command_data.h"

const std::vector<ModbusCommand> &modbusCommands()
{
    const bool Read = false;
    const bool Write = true;
    static const std::vector<ModbusCommand> commands = {
        {"readWords", Read, WordItem, "HR7", 3, "", " (read 3 word(s) from 1-HR7)"},
        {"readWords of inputs", Read, WordItem, "IR7", 1, "", " (read 1 word(s) from 1-IR7)"},
        {"readIRHRbits", Read, BitItem, "HR7.14", 11, "", " (read 11 bit(s) from 1-HR7.14)"},
        {"readIRHRbits of inputs", Read, SecondBitItem, "IR7.3", 2, "", ""},
        {"readDWords", Read, DoubleWordItem, "HR7", 2, "", " (read 2 dword(s) from 1-HR7)"},
        {"readDWords, high word first", Read, DoubleWordItem, "IRSW7", 1, "",
         " (read 1 dword(s) from 1-IRSW7)"},
        {"readBytes", Read, ByteItem, "FN6HR7", 3, "", " (read 3 byte(s) from 1-FN6HR7)"},
        {"readDIDOs of coils", Read, BitItem, "FN5DO7", 21, "", " (read 21 bit(s) from 1-FN5DO7)"},
        {"readDIDOs of inputs", Read, BitItem, "DI7", 5, "", " (read 5 bit(s) from 1-DI7)"},
        {"readBytesFromDI", Read, ByteItem, "DI1", 2, "", " (read 2 byte(s) from 1-DI1)"},
        {"readBytesFromDO", Read, BlockItem, "DO1", 2, "", ""},
        {"writeWords", Write, WordItem, "HR7", 2, "11 22 33 44", " (write 2 word to 1-HR7)"},
        {"writeDWords", Write, DoubleWordItem, "HRSW7", 1, "11 22 33 44", " (write 1 dword to 1-HRSW7)"},
        {"writeBytes", Write, ByteItem, "HR7", 3, "11 22 33", " (write 3 byte to 1-HR7)"},
        {"writeWordsWithFN6", Write, WordItem, "FN6HR7", 3, "11 22 33 44 55 66",
         " (write 3 word to 1-FN6HR7)"},
        {"writeDWordsWithFN6", Write, DoubleWordItem, "FN6HR7", 1, "11 22 33 44",
         " (write 1 dword to 1-FN6HR7)"},
        {"writeBytesWithFN6", Write, BlockItem, "FN6HR7", 3, "11 22 33", ""},
        {"writeCoils", Write, BitItem, "DO7", 10, "FF 01", " (write 10 bit to 1-DO7)"},
        {"writeCoilsWithFN5", Write, SecondBitItem, "FN5DO7", 3, "05", ""},
        {"writeHRbit", Write, BitItem, "HR7.14", 3, "05", " (write 3 bit to 1-HR7.14)"},
        {"writeHRbitWithFN6", Write, BitItem, "FN6HR7.14", 3, "05", " (write 3 bit to 1-FN6HR7.14)"},
    };
    return commands;
}

QStringList modbusCommandTags()
{
    QStringList tags;
    for (const char *tag : {"DI1", "DI2", "DI3", "DI6", "DO4", "DO12", "DO13"})
        tags << QLatin1String(tag);
    return tags;
}

ModelSlave filledSlave()
{
    ModelSlave slave;
    for (size_t i = 0; i < 100; ++i) {
        slave.coils[i] = i % 3 == 0 ? 1 : 0;
        slave.discreteInputs[i] = i % 5 < 2 ? 1 : 0;
        slave.holdingRegisters[i] = static_cast<std::uint16_t>(0x1234 + 0x0F1D * i);
        slave.inputRegisters[i] = static_cast<std::uint16_t>(0xFEDC - 0x0B17 * i);
    }
    return slave;
}
