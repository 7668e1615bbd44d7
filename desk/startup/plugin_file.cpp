#include "desk/startup/plugin_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <cstring>

namespace
{

QStringList defaultPlaces()
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral(PLUGIN_FILE);
    QStringList places;
    for (const char *folder : {".", "../../runtime", "../runtime", INSTALLED_PLUGIN_FOLDER})
        places += QDir::cleanPath(program.absoluteFilePath(QLatin1String(folder) + QLatin1Char('/') + name));
    return places;
}

} // namespace

Result<QString> findPlugin(const QString &given)
{
    if (QFileInfo(given).isDir())
        return Error{QStringLiteral("%1 is a directory; expected a plug-in file").arg(given)};
    const QStringList places = given.isEmpty() ? defaultPlaces() : QStringList{given};
    for (const QString &place : places) {
        const QFileInfo file(place);
        if (file.isFile())
            return file.canonicalFilePath();
    }
    return Error{QStringLiteral("no plug-in; looked for %1").arg(places.join(QStringLiteral(", ")))};
}

QString crashText(const QString &path, int signal)
{
    return QStringLiteral(
               "%1: the loader or the plug-in crashed (%2); is the file damaged, or built for another "
               "machine?")
        .arg(path, QString::fromLocal8Bit(strsignal(signal)));
}
