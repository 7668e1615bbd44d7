#include "drivers/device_setting.h"
#include "drivers/driver_setting.h"
#include "drivers/modbus_rtu_slave_over_tcp/modbus_rtu_slave_over_tcp.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

// Host and driver are built apart and pass these records to each other, so where each field lies is part of
// their contract. Pointers have 32 bits on a panel and 64 on a PC; a text or a list is one pointer up to Qt 5
// and three words from Qt 6 on.

namespace
{

enum class Layout { Panel, PanelQt6, Pc, PcQt6 };

constexpr bool OnePointerEach = sizeof(QString) == sizeof(void *);
constexpr Layout Here = sizeof(void *) == 4 ? (OnePointerEach ? Layout::Panel : Layout::PanelQt6)
                                            : (OnePointerEach ? Layout::Pc : Layout::PcQt6);

constexpr std::size_t here(std::size_t panel, std::size_t panelQt6, std::size_t pc, std::size_t pcQt6)
{
    return Here == Layout::Panel      ? panel
           : Here == Layout::PanelQt6 ? panelQt6
           : Here == Layout::Pc       ? pc
                                      : pcQt6;
}

} // namespace

#define PIN(what, ...) static_assert((what) == here(__VA_ARGS__), #what)

static_assert(OnePointerEach == (QT_VERSION < 0x060000), "what Qt 6 changed");
PIN(sizeof(QString), 4, 12, 8, 24);
PIN(sizeof(QByteArray), 4, 12, 8, 24);
PIN(sizeof(QList<CommunicatorCommand>), 4, 12, 8, 24);

static_assert(std::is_standard_layout<CommunicatorCommand>::value, "no hidden parts");
PIN(sizeof(CommunicatorCommand), 12, 20, 16, 32);
PIN(offsetof(CommunicatorCommand, dataType), 0, 0, 0, 0);
PIN(offsetof(CommunicatorCommand, count), 4, 4, 4, 4);
PIN(offsetof(CommunicatorCommand, address), 8, 8, 8, 8);

static_assert(std::is_standard_layout<DriverSetting>::value, "no hidden parts");
PIN(sizeof(DriverSetting), 24, 32, 32, 48);
PIN(offsetof(DriverSetting, timeout), 0, 0, 0, 0);
PIN(offsetof(DriverSetting, retry), 4, 4, 4, 4);
PIN(offsetof(DriverSetting, stationId), 8, 8, 8, 8);
PIN(offsetof(DriverSetting, delay), 12, 12, 12, 12);
PIN(offsetof(DriverSetting, auxText), 16, 16, 16, 16);
PIN(offsetof(DriverSetting, auxFlag), 20, 28, 24, 40);

static_assert(std::is_standard_layout<DeviceSetting>::value, "no hidden parts");
static_assert(sizeof(device_type) == 4, "stored as 32 bits");
PIN(sizeof(DeviceSetting), 44, 68, 64, 112);
PIN(offsetof(DeviceSetting, type), 0, 0, 0, 0);
PIN(offsetof(DeviceSetting, deviceString), 4, 4, 8, 8);
PIN(offsetof(DeviceSetting, baudrate), 8, 16, 16, 32);
PIN(offsetof(DeviceSetting, databits), 12, 20, 20, 36);
PIN(offsetof(DeviceSetting, stopbits), 16, 24, 24, 40);
PIN(offsetof(DeviceSetting, parity), 20, 28, 28, 44);
PIN(offsetof(DeviceSetting, auxValue), 24, 32, 32, 48);
PIN(offsetof(DeviceSetting, auxText), 28, 36, 40, 56);
PIN(offsetof(DeviceSetting, linkId), 32, 48, 48, 80);
PIN(offsetof(DeviceSetting, currentIpIndex), 36, 52, 52, 84);
PIN(offsetof(DeviceSetting, sockets), 40, 56, 56, 88);

PIN(sizeof(QObject), 8, 8, 16, 16);
PIN(sizeof(DriverInterface), 4, 4, 8, 8);

// The driver as the host deletes it: QObject, the interface, four flags, error text, connection name, table
// of used addresses, and a guarded pointer, which is one or two pointers, as the Qt line has it.
constexpr std::size_t Flags = here(4, 4, 8, 8);
static_assert(sizeof(DriverModbusRtuSlaveOverTcp) == sizeof(QObject) + sizeof(DriverInterface) + Flags +
                                                         2 * sizeof(QString) + sizeof(void *) +
                                                         sizeof(QPointer<QObject>),
              "nothing else in it");

TEST(RecordLayout, InterfaceComesAfterQObject)
{
    const DriverModbusRtuSlaveOverTcp driver;
    const QObject *object = &driver;
    const DriverInterface *interface = &driver;
    EXPECT_EQ(static_cast<const void *>(object), static_cast<const void *>(&driver));
    EXPECT_EQ(reinterpret_cast<const char *>(interface) - reinterpret_cast<const char *>(object),
              static_cast<std::ptrdiff_t>(sizeof(QObject)));
}
