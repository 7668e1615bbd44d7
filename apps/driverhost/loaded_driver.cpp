#include "loaded_driver.h"

#include "run_directory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QRandomGenerator>

namespace
{

// The driver draws its connection's name from the thread's random numbers, which start the same in every
// process unless the host sows them.
void sowRandomNumbers()
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    qsrand(QRandomGenerator::system()->generate());
#pragma GCC diagnostic pop
}

QStringList usualPlaces()
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral(PLUGIN_FILE);
    QStringList places;
    for (const char *folder : {".", "../../runtime", "../runtime", INSTALLED_PLUGIN_FOLDER})
        places += QDir::cleanPath(program.absoluteFilePath(QLatin1String(folder) + QLatin1Char('/') + name));
    return places;
}

} // namespace

QString findPlugin(const QString &given, QString &error)
{
    const QStringList places = given.isEmpty() ? usualPlaces() : QStringList{given};
    for (const QString &place : places) {
        const QFileInfo file(place);
        if (file.isFile())
            return file.canonicalFilePath();
    }
    error = QStringLiteral("no plug-in; looked for %1").arg(places.join(QStringLiteral(", ")));
    return {};
}

LoadedDriver::LoadedDriver(const QString &path) : m_loader(path)
{
    sowRandomNumbers();
    m_driver = qobject_cast<DriverInterface *>(m_loader.instance());
}

std::unique_ptr<DriverInterface> LoadedDriver::createAnother() const
{
    const auto create =
        reinterpret_cast<DriverInterface *(*)()>(QLibrary::resolve(m_loader.fileName(), "CreateDriver"));
    return std::unique_ptr<DriverInterface>(create == nullptr ? nullptr : create());
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
