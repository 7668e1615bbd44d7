#pragma once

#include "kit/link/scripted_channel.h"

using kit::ScriptedChannel;
