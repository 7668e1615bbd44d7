#include "desk/link/loaded_driver.h"

#include "drivers/qt/qt_lines.h"

#include <QLibrary>
#include <QRandomGenerator>

LoadedDriver::LoadedDriver(const QString &path) : m_path(path), m_loader(path)
{
    // The driver draws its connection's name from the thread's random numbers, which start the same in every
    // process unless the host seeds them.
    seedRandomNumbers(QRandomGenerator::system()->generate());
    m_driver = qobject_cast<DriverInterface *>(m_loader.instance());
}

QString LoadedDriver::errorString() const
{
    const QString text = m_loader.errorString();
    return text.contains(m_path) ? text : m_path + QStringLiteral(": ") + text;
}

std::unique_ptr<DriverInterface> LoadedDriver::createAnother() const
{
    const auto create =
        reinterpret_cast<DriverInterface *(*)()>(QLibrary::resolve(m_loader.fileName(), "CreateDriver"));
    return std::unique_ptr<DriverInterface>(create == nullptr ? nullptr : create());
}

bool LoadedDriver::renew()
{
    std::unique_ptr<DriverInterface> another = isLoaded() ? createAnother() : nullptr;
    if (!another)
        return false;
    m_another = std::move(another);
    m_driver = m_another.get();
    return true;
}

QStringList LoadedDriver::exported(const QStringList &names) const
{
    QStringList found;
    for (const QString &name : names) {
        if (QLibrary::resolve(m_loader.fileName(), name.toLatin1().constData()) != nullptr)
            found += name;
    }
    return found;
}

QString LoadedDriver::verificationText() const
{
    const auto query = reinterpret_cast<const char *(*)()>(
        QLibrary::resolve(m_loader.fileName(), "qt_plugin_query_verification_data"));
    return query == nullptr ? QString() : QString::fromLatin1(query());
}
