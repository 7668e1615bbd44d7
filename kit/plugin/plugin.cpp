#include "kit/plugin/plugin.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

namespace kit
{

// Without a path the loaders would look into the system's folders.
Plugin::Plugin(const QString &file)
    : m_file(QFileInfo(file).absoluteFilePath()), m_loader(m_file), m_library(nullptr), m_isTrusted(false)
{
    // Qt 5 would keep the file in the process when it is unloaded.
    m_loader.setLoadHints(QLibrary::LoadHints());
}

Plugin::~Plugin()
{
    if (m_library != nullptr)
        dlclose(m_library);
}

QObject *Plugin::object()
{
    return m_loader.instance();
}

DriverInterface *Plugin::driver()
{
    return qobject_cast<DriverInterface *>(object());
}

bool Plugin::unload()
{
    if (m_library != nullptr)
        dlclose(m_library);
    m_library = nullptr;
    return m_loader.unload();
}

std::unique_ptr<DriverInterface> Plugin::create()
{
    auto *const make = entryPoint<DriverInterface *()>("CreateDriver");
    if (make == nullptr)
        return nullptr;
    DriverInterface *const made = make();
    if (m_isTrusted)
        return std::unique_ptr<DriverInterface>(made);
    // What is not made anew must not be deleted.
    DriverInterface *const another = make();
    if (made == nullptr || another == made || another == nullptr)
        return nullptr;
    delete another;
    m_isTrusted = true;
    return std::unique_ptr<DriverInterface>(made);
}

void *Plugin::address(const char *name)
{
    if (m_library == nullptr)
        m_library = dlopen(QFile::encodeName(m_file).constData(), RTLD_NOW | RTLD_LOCAL);
    return m_library == nullptr ? nullptr : dlsym(m_library, name);
}

} // namespace kit
