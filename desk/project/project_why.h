#pragma once

#include <QStringList>

/// Goes through what the driver does when it loads the project for \a device, step by step, and says where
/// that ends. \a place is a database file, or the folder of the program that the driver runs in.
struct LoadReport {
    QStringList steps;
    bool isLoaded = false;
};
LoadReport explainLoad(const QString &place, const QString &device);
