#include "kit/program/beside_project.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kit
{

namespace
{

const char ProgramName[] = "driver-conformance";
const char DatabaseFolder[] = "compile/database";

// A folder for one run, gone with the object.
class RunFolder
{
public:
    RunFolder()
    {
        QByteArray pattern =
            QFile::encodeName(QDir::tempPath() + QLatin1String("/driver-conformance-XXXXXX"));
        if (mkdtemp(pattern.data()) != nullptr)
            m_folder = QFile::decodeName(pattern);
    }
    ~RunFolder()
    {
        if (m_folder.isEmpty())
            return;
        QFile::remove(program());
        QFile::remove(database());
        QDir(m_folder).rmpath(QLatin1String(DatabaseFolder));
    }
    RunFolder(const RunFolder &) = delete;
    RunFolder &operator=(const RunFolder &) = delete;

    QString program() const { return m_folder + QLatin1Char('/') + QLatin1String(ProgramName); }

    bool fill(const QString &givenDatabase) const
    {
        return !m_folder.isEmpty() && QDir(m_folder).mkpath(QLatin1String(DatabaseFolder)) &&
               QFile::copy(givenDatabase, database()) &&
               QFile::copy(QFile::symLinkTarget(QLatin1String("/proc/self/exe")), program());
    }

private:
    QString database() const
    {
        return m_folder + QLatin1Char('/') + QLatin1String(DatabaseFolder) + QLatin1String("/database");
    }

    QString m_folder;
};

// Does not return unless the program cannot be started.
void execute(const QString &program, const QStringList &words)
{
    std::vector<QByteArray> texts(1, QFile::encodeName(program));
    texts.reserve(static_cast<size_t>(words.size()) + 1);
    for (int i = 0; i < words.size(); ++i)
        texts.push_back(words.at(i).toLocal8Bit());
    std::vector<char *> arguments;
    arguments.reserve(texts.size() + 1);
    for (QByteArray &text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    execv(arguments.front(), arguments.data());
}

int exitCodeOf(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

int runBesideProject(const QString &database, const QStringList &words, QString &error)
{
    const RunFolder folder;
    if (!folder.fill(database)) {
        error = QString::fromLatin1("cannot make a folder with a copy of %1").arg(database);
        return -1;
    }
    const pid_t child = fork();
    if (child == 0) {
        execute(folder.program(), words);
        _exit(127);
    }
    if (child < 0) {
        error = QLatin1String("cannot start another process");
        return -1;
    }
    // The folder goes when the run is over, whoever ends it.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGTERM, SIG_IGN);
    return exitCodeOf(child);
}

} // namespace kit
