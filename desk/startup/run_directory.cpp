#include "desk/startup/run_directory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace
{

const char NamePattern[] = "driverhost-XXXXXX";
const int MaxTries = 10;

QString lockPath(const QString &directory)
{
    return directory + QStringLiteral("/lock");
}

// Whoever has the lock removes all but the lock itself, then that, then the folder. Another one who takes the
// lock in between has the folder to remove.
void removeLocked(const QString &directory, QLockFile &lock)
{
    QDir folder(directory);
    folder.setFilter(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    for (const QFileInfo &entry : folder.entryInfoList()) {
        if (entry.filePath() == lockPath(directory))
            continue;
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
    lock.unlock();
    QDir().rmdir(directory);
}

// A directory in use is locked, one that was left is not. The lock of a directory that was made this moment
// may still be missing; its maker then finds that it has lost it, and makes another one.
void removeLeftovers(const QString &place)
{
    QDir folder(place);
    folder.setFilter(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    folder.setNameFilters({QString::fromLatin1(NamePattern).replace(QLatin1Char('X'), QLatin1Char('?'))});
    for (const QFileInfo &entry : folder.entryInfoList()) {
        if (entry.ownerId() != getuid())
            continue;
        QLockFile lock(lockPath(entry.filePath()));
        lock.setStaleLockTime(0);
        if (lock.tryLock(0))
            removeLocked(entry.filePath(), lock);
    }
}

bool copyProgram(const QString &target)
{
    // Also right when the file on the disk has been replaced meanwhile.
    return QFile::copy(QStringLiteral("/proc/self/exe"), target) &&
           QFile::setPermissions(target, QFile::ReadOwner | QFile::ExeOwner);
}

} // namespace

QStringList RunDirectory::defaultPlaces()
{
    // As it is given: QDir::tempPath() is empty when there is no such folder.
    const QString temporary = qEnvironmentVariable("TMPDIR");
    QStringList places{temporary.isEmpty() ? QStringLiteral("/tmp") : QDir(temporary).absolutePath()};
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty())
        places += runtime;
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (QFileInfo(QFileInfo(cache).path()).isWritable() && QDir::homePath() != QDir::rootPath()) {
        QDir().mkdir(cache);
        places += cache;
    }
    return places;
}

RunDirectory::RunDirectory(const QStringList &places)
{
    QStringList reasons;
    for (const QString &place : places) {
        if (tryPlace(place)) {
            if (!reasons.isEmpty())
                m_notice = QStringLiteral("%1; using %2").arg(reasons.join(QStringLiteral(", ")), place);
            return;
        }
        reasons += m_error;
    }
    m_error = QStringLiteral("no folder to run the driver from: %1 (set TMPDIR to a folder that is yours to "
                             "write and not mounted noexec)")
                  .arg(reasons.join(QStringLiteral(", ")));
}

RunDirectory::~RunDirectory()
{
    if (m_lock)
        removeLocked(m_path, *m_lock);
}

bool RunDirectory::tryPlace(const QString &place)
{
    removeLeftovers(place);
    for (int i = 0; i < MaxTries && !m_lock; ++i) {
        QByteArray path = QFile::encodeName(place + QLatin1Char('/') + QLatin1String(NamePattern));
        if (mkdtemp(path.data()) == nullptr) {
            m_error = QStringLiteral("no folder can be made in %1 (%2)").arg(place, qt_error_string(errno));
            return false;
        }
        const QString directory = QFile::decodeName(path);
        auto lock = std::make_unique<QLockFile>(lockPath(directory));
        lock->setStaleLockTime(0);
        if (lock->tryLock(0)) {
            m_path = directory;
            m_lock = std::move(lock);
        }
    }
    m_error = QStringLiteral("programs cannot run from %1").arg(place);
    if (!m_lock)
        return false;
    if (copyProgram(programPath()) && QDir().mkpath(QFileInfo(databasePath()).path()) &&
        access(QFile::encodeName(programPath()).constData(), X_OK) == 0)
        return true;
    removeLocked(m_path, *m_lock);
    m_lock.reset();
    return false;
}

QString RunDirectory::programPath() const
{
    return path() + QStringLiteral("/driverhost");
}

QString RunDirectory::databasePath() const
{
    return path() + QStringLiteral("/compile/database/database");
}
