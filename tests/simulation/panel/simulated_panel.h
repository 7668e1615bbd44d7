#pragma once

#include "desk/link/session.h"
#include "desk/link/tcp_channel.h"
#include "tests/simulation/gateway.h"

/// A session whose driver talks to stations behind a simulated gateway; no time passes but the clock's.
struct SimulatedPanel {
    SimulatedPanel(const QString &plugin, const LinkSettings &settings, quint32 seed = 1)
        : gateway(time, seed),
          line(time, gateway),
          setting(deviceSettingOf(settings.channel)),
          session(plugin, settings, std::make_unique<LineChannel>(line, &setting, settings.channel))
    {
    }

    VirtualTime time;
    Gateway gateway;
    SimulatedLine line;
    DeviceSetting setting;
    Session session;
};
