#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

// Host and driver are built apart and pass these records to each other, so where each field lies is part of
// their contract. The numbers are those of a panel, with pointers of 32 bits; a text or a list is one
// pointer.

#define PIN_ON_PANEL(what, number) static_assert(sizeof(void *) != 4 || (what) == (number), #what)

static_assert(std::is_standard_layout<CommunicatorCommand>::value, "no hidden parts");
PIN_ON_PANEL(sizeof(CommunicatorCommand), 12);
PIN_ON_PANEL(offsetof(CommunicatorCommand, dataType), 0);
PIN_ON_PANEL(offsetof(CommunicatorCommand, count), 4);
PIN_ON_PANEL(offsetof(CommunicatorCommand, address), 8);

static_assert(std::is_standard_layout<DriverSetting>::value, "no hidden parts");
PIN_ON_PANEL(sizeof(DriverSetting), 24);
PIN_ON_PANEL(offsetof(DriverSetting, timeout), 0);
PIN_ON_PANEL(offsetof(DriverSetting, retry), 4);
PIN_ON_PANEL(offsetof(DriverSetting, stationId), 8);
PIN_ON_PANEL(offsetof(DriverSetting, delay), 12);
PIN_ON_PANEL(offsetof(DriverSetting, auxText), 16);
PIN_ON_PANEL(offsetof(DriverSetting, auxFlag), 20);

static_assert(std::is_standard_layout<DeviceSetting>::value, "no hidden parts");
static_assert(sizeof(device_type) == 4, "stored as 32 bits");
PIN_ON_PANEL(sizeof(DeviceSetting), 44);
PIN_ON_PANEL(offsetof(DeviceSetting, type), 0);
PIN_ON_PANEL(offsetof(DeviceSetting, deviceString), 4);
PIN_ON_PANEL(offsetof(DeviceSetting, baudrate), 8);
PIN_ON_PANEL(offsetof(DeviceSetting, databits), 12);
PIN_ON_PANEL(offsetof(DeviceSetting, stopbits), 16);
PIN_ON_PANEL(offsetof(DeviceSetting, parity), 20);
PIN_ON_PANEL(offsetof(DeviceSetting, auxValue), 24);
PIN_ON_PANEL(offsetof(DeviceSetting, auxText), 28);
PIN_ON_PANEL(offsetof(DeviceSetting, linkId), 32);
PIN_ON_PANEL(offsetof(DeviceSetting, currentIpIndex), 36);
PIN_ON_PANEL(offsetof(DeviceSetting, sockets), 40);

// QObject, the interface, four flags, error text, connection name, table of used addresses, and a guarded
// pointer, which is one or two pointers, as the Qt line has it.
PIN_ON_PANEL(sizeof(QObject), 8);
PIN_ON_PANEL(sizeof(DriverInterface), 4);
PIN_ON_PANEL(sizeof(DriverModbusRtuSlaveOverTcp), 28 + sizeof(QPointer<QObject>));

TEST(RecordLayout, InterfaceComesAfterQObject)
{
    const DriverModbusRtuSlaveOverTcp driver;
    const QObject *object = &driver;
    const DriverInterface *interface = &driver;
    EXPECT_EQ(static_cast<const void *>(object), static_cast<const void *>(&driver));
    EXPECT_EQ(reinterpret_cast<const char *>(interface) - reinterpret_cast<const char *>(object),
              static_cast<std::ptrdiff_t>(sizeof(QObject)));
}
