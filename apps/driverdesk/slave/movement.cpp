#include "apps/driverdesk/slave/movement.h"

#include <algorithm>
#include <cmath>
#include <random>

const QStringList &movementNames()
{
    static const QStringList names = {QStringLiteral("none"), QStringLiteral("ramp"), QStringLiteral("sine"),
                                      QStringLiteral("counter"), QStringLiteral("random")};
    return names;
}

int valueAt(const Movement &movement, qint64 time, quint32 seed, int resting)
{
    const qint64 period = std::max(1, movement.period);
    const int span = std::max(0, movement.max - movement.min);
    const qint64 step = time / period;
    const double phase = static_cast<double>(time % period) / static_cast<double>(period);
    switch (movement.kind) {
    case Movement::None: break;
    case Movement::Ramp: return movement.min + static_cast<int>(std::lround(phase * span));
    case Movement::Sine: {
        const double height = (1 + std::sin(phase * 2 * std::acos(-1.0))) / 2;
        return movement.min + static_cast<int>(std::lround(height * span));
    }
    case Movement::Counter: return movement.min + static_cast<int>(step % (qint64(span) + 1));
    case Movement::Random: {
        std::minstd_rand random(seed * 7919U + static_cast<quint32>(step) + 1U);
        random.discard(3);
        return movement.min + static_cast<int>(random() % (static_cast<unsigned>(span) + 1U));
    }
    }
    return resting;
}
