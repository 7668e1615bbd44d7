#pragma once

#include <QLockFile>
#include <QStringList>

#include <functional>
#include <memory>

/// The driver finds its project database by one rule: beside the running program. So the program that is to
/// read a given database runs from a temporary directory that has a copy of the program and that database.

/// Whether this process was started in such a directory.
bool runsInRunDirectory();
/// The plug-in that the process which started this one has found.
QString inheritedPlugin();

/// A temporary directory with a copy of this program; removed with the object. Directories that were left
/// behind by processes which are gone are removed by the next one.
class RunDirectory
{
public:
    /// Takes the first of \a places from which programs can run; tells on standard error when that is not the
    /// first.
    explicit RunDirectory(const QStringList &places = usualPlaces());
    ~RunDirectory();
    RunDirectory(const RunDirectory &) = delete;
    RunDirectory &operator=(const RunDirectory &) = delete;

    bool isValid() const { return m_lock != nullptr; }
    QString errorString() const { return m_error; }
    QString path() const { return m_path; }
    QString programPath() const;
    /// Where the driver will look for the project database; the folder exists.
    QString databasePath() const;

    /// The folder for temporary files, then the folders for running programs and for caches.
    static QStringList usualPlaces();

private:
    bool tryPlace(const QString &place);

    QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    QString m_error;
};

/// Puts a project database at a path; false with the reason in the text.
using DatabaseMaker = std::function<bool(const QString &path, QString &error)>;

/// Runs this program with its own arguments beside the database that \a makeDatabase makes, hands signals on,
/// and removes everything afterwards. Returns how the run ended; a run that died of a signal ends this
/// process the same way.
int runBesideDatabase(const QString &plugin, const DatabaseMaker &makeDatabase);
