#pragma once

#include "drivers/qt/qt_lines.h"
