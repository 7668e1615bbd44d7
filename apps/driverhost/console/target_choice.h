#pragma once

#include "desk/result.h"
#include "desk/targets/target_file.h"

#include <QStringList>

/// The environment's target: "rtutcp://HOST:PORT/STATION" or "@name".
const char *const TargetVariable = "DRIVERHOST_TARGET";

/// Which target was meant, and who said so.
struct TargetChoice {
    TargetSettings settings;
    QString origin; ///< for people: "@boiler of FILE"
};

/// Whether a word on the command line is the name of a target: "@boiler".
bool looksLikeTargetName(const QString &word);

/// Whether one of the words is a target, by its address or by its name.
bool hasTarget(const QStringList &words);

/// The settings of a target by its address or by its name.
Result<TargetChoice> targetCalled(const QString &word);

/// Takes the target out of \a words; when there is none, it is the environment's. Nothing is chosen where
/// nobody says anything.
Result<TargetChoice> chooseTarget(QStringList &words);
