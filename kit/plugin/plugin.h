#pragma once

#include "host/driver_interface.h"

#include <QPluginLoader>

#include <memory>

namespace kit
{

/// A driver's plug-in file, loaded as a host does.
class Plugin
{
public:
    explicit Plugin(const QString &file);
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;
    ~Plugin();

    const QString &file() const { return m_file; }

    /// The object of Qt's loader, the same until somebody deletes it; null when the file cannot be loaded or
    /// is no plug-in.
    QObject *object();
    /// The driver behind it; null as well when it is no driver.
    DriverInterface *driver();
    QString errorString() const { return m_loader.errorString(); }
    /// Whether the file is gone from the process, after the object.
    bool unload();

    /// An entry point; null when the file has none of that name.
    template <typename Function>
    Function *entryPoint(const char *name)
    {
        return reinterpret_cast<Function *>(address(name));
    }
    /// A driver of `CreateDriver`; null without it, and when it does not make an object with each call.
    std::unique_ptr<DriverInterface> create();

private:
    void *address(const char *name);

    QString m_file;
    QPluginLoader m_loader;
    void *m_library;
    bool m_isTrusted; // that CreateDriver makes objects
};

} // namespace kit
