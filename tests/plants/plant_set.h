#pragma once

#include "desk/doctor/observing/doctor_options.h"
#include "tests/plants/plant.h"

#include <QStringList>

/// A plant, how it is examined, and what is wrong with it.
struct PlantCase {
    QString name;
    PlantOptions plant;
    DoctorOptions doctor;
    QStringList faults; ///< the names of the findings; none when it is healthy
    QStringList words;  ///< the same wanted values for a command line
};

/// The plants of a seed: of every fault one, some with two; and healthy ones.
std::vector<PlantCase> faultyPlants(quint32 seed);
std::vector<PlantCase> healthyPlants(quint32 seed);
