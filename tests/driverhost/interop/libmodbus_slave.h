#pragma once

#include "desk/wire/protocol.h"
#include "tests/peers/exercise.h"

#include <atomic>
#include <modbus/modbus.h>
#include <thread>

/// A slave of libmodbus, which speaks RTU on serial lines only. Its inputs hold what the exercise wants.
class LibmodbusSlave
{
public:
    explicit LibmodbusSlave(const QString &device, int station = 1)
    {
        context = modbus_new_rtu(device.toLocal8Bit().constData(), 115200, 'N', 8, 1);
        mapping = modbus_mapping_new(modbus::AddressSpace, modbus::AddressSpace, modbus::AddressSpace,
                                     modbus::AddressSpace);
        for (int i = 0; i < modbus::AddressSpace; ++i) {
            mapping->tab_input_bits[i] = exerciseInput(i) ? 1 : 0;
            mapping->tab_input_registers[i] = static_cast<uint16_t>(exerciseInputRegister(i, 1));
        }
        modbus_set_slave(context, station);
        modbus_set_indication_timeout(context, 0, 50000);
        isConnected = modbus_connect(context) == 0;
        thread = std::thread([this] { serve(); });
    }

    ~LibmodbusSlave()
    {
        isStopping = true;
        thread.join();
        modbus_close(context);
        modbus_mapping_free(mapping);
        modbus_free(context);
    }
    LibmodbusSlave(const LibmodbusSlave &) = delete;
    LibmodbusSlave &operator=(const LibmodbusSlave &) = delete;

    void setHoldingRegister(int number, int value)
    {
        mapping->tab_registers[number - 1] = static_cast<uint16_t>(value);
    }
    int holdingRegister(int number) const { return mapping->tab_registers[number - 1]; }

    bool isConnected = false;

private:
    void serve()
    {
        std::vector<uint8_t> request(MODBUS_RTU_MAX_ADU_LENGTH);
        while (!isStopping) {
            const int size = modbus_receive(context, request.data());
            if (size > 0)
                modbus_reply(context, request.data(), size, mapping);
        }
    }

    modbus_t *context = nullptr;
    modbus_mapping_t *mapping = nullptr;
    std::atomic<bool> isStopping{false};
    std::thread thread;
};
