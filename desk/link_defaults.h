#pragma once

#include <QtGlobal>

/// Where a link leads when nobody says otherwise. How long it waits and how often it tries stands in
/// desk/channel/exchange_settings.h.

const char *const DefaultHost = "127.0.0.1";
const quint16 DefaultPort = 502;
const int DefaultStation = 1;
/// The text by which a project names the port of the link.
const char *const DefaultDevice = "ETHERNET";
