#pragma once

#include <QByteArray>

/// What the plug-in must show in its section .qtplugin when it is built on this program's Qt.
QByteArray expectedVerificationText();
