#pragma once

#include "kit/subject/command.h"

using kit::makeCommand;
