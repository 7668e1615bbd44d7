#pragma once

#include <QLockFile>
#include <QStringList>

#include <memory>

/// A temporary directory with a copy of this program; removed with the object. Those that processes left
/// which are gone are removed by the next one.
class RunDirectory
{
public:
    /// Takes the first of \a places from which programs can run.
    explicit RunDirectory(const QStringList &places = defaultPlaces());
    ~RunDirectory();
    RunDirectory(const RunDirectory &) = delete;
    RunDirectory &operator=(const RunDirectory &) = delete;

    bool isValid() const { return m_lock != nullptr; }
    QString errorString() const { return m_error; }
    /// Why it is not in the first of the places; empty when it is.
    QString notice() const { return m_notice; }
    QString path() const { return m_path; }
    QString programPath() const;
    /// Where the driver will look for the project database; the folder exists.
    QString databasePath() const;

    /// The folder for temporary files, then the folders for running programs and for caches.
    static QStringList defaultPlaces();

private:
    bool tryPlace(const QString &place);

    QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    QString m_error;
    QString m_notice;
};
