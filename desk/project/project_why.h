#pragma once

#include <QStringList>

/// Why a driver loads a project database or does not.

/// What the driver does with a database, step by step for people, and what comes of it.
struct LoadReport {
    QStringList steps;
    /// What the driver's first command says of it, and every further one; empty when it loads the project.
    QString firstText;
    QString laterText;
    /// The table at fault: "LINK", "NODE", "custom_tag_table"; empty when it is none of them.
    QString table;

    bool isLoaded() const { return firstText.isEmpty(); }
};

/// Does with a database what the driver does for \a device, a text that checkDeviceText() lets pass, and says
/// where that ends. \a place is the file, or the folder of the program that the driver runs in.
LoadReport explainLoad(const QString &place, const QString &device);
