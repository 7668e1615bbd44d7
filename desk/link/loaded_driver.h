#pragma once

#include "host/driver_interface.h"

#include <QJsonObject>
#include <QPluginLoader>
#include <QStringList>

#include <memory>

/// The driver out of a plug-in file.
class LoadedDriver
{
public:
    explicit LoadedDriver(const QString &path);

    bool isLoaded() const { return m_driver != nullptr; }
    /// Why it is not, with the file's name.
    QString errorString() const;
    QString path() const { return m_loader.fileName(); }
    DriverInterface *operator->() const { return m_driver; }

    /// Another driver object of the same file, with its own error and database state.
    std::unique_ptr<DriverInterface> createAnother() const;
    /// Goes on with another object, which has loaded no project yet; false when the file makes none.
    bool renew();

    QJsonObject metaData() const { return m_loader.metaData(); }
    /// Which of the names the file exports as functions.
    QStringList exported(const QStringList &names) const;
    /// What the loader of a panel compares before it loads the file.
    QString verificationText() const;

private:
    QString m_path;
    QPluginLoader m_loader;
    DriverInterface *m_driver = nullptr;
    std::unique_ptr<DriverInterface> m_another; // when it is not the plug-in's own
};
