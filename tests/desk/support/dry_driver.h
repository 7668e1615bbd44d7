#pragma once

#include "desk/items/items.h"
#include "desk/link/dry_run_channel.h"
#include "host/driver_interface.h"

#include <memory>

/// A driver object of the plug-in, which has loaded nothing yet, on a channel that sends nothing. Wants a
/// project database beside the program.
class DryDriver
{
public:
    explicit DryDriver(const QString &device, int station = 1);

    /// The driver's text for a command; empty when it was carried out.
    QString read(ItemKind kind, const char *address, int count = 1);
    /// The same; zeros are written.
    QString write(ItemKind kind, const char *address, int count = 1);
    /// What would have been sent.
    const std::vector<QByteArray> &requests() const { return m_channel.requests(); }

private:
    QString text();

    DryRunChannel m_channel;
    std::unique_ptr<DriverInterface> m_driver;
};
