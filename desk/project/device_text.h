#pragma once

#include "desk/result.h"

/// Device texts, by which a project names the port of a link: "ETHERNET", or one that ends in a number,
/// "COM1".

/// Whether \a device can name a link: it begins with "ETHERNET" or ends in digits after some other text.
/// Anything else would stop the driver.
Result<> checkDeviceText(const QString &device);

/// The text for an HMI port of a project.
QString deviceTextOf(int hmiPort);
