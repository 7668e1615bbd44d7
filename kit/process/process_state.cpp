#include "kit/process/process_state.h"

#include <QDir>
#include <QProcess>
#include <QStringList>

#include <cfenv>
#include <clocale>
#include <csignal>
#include <sys/stat.h>

namespace kit
{

namespace
{

// What a signal calls, and how.
QString handlerOf(int signal)
{
    struct sigaction action;
    if (sigaction(signal, nullptr, &action) != 0)
        return QString();
    return QString::fromLatin1("%1, flags %2")
        .arg(reinterpret_cast<quintptr>(action.sa_handler), 0, 16)
        .arg(action.sa_flags, 0, 16);
}

QString blockedSignals()
{
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    QString text;
    for (int signal = 1; signal < NSIG; ++signal)
        if (sigismember(&blocked, signal) == 1)
            text += QString::number(signal) + QLatin1Char(' ');
    return text;
}

QString fileModeMask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return QString::number(mask, 8);
}

QString environment()
{
    QStringList variables = QProcess::systemEnvironment();
    variables.sort();
    return variables.join(QLatin1String("\n"));
}

} // namespace

ProcessState::ProcessState()
{
    add(QLatin1String("the locale"), QString::fromLocal8Bit(setlocale(LC_ALL, nullptr)));
    add(QLatin1String("the working directory"), QDir::currentPath());
    add(QLatin1String("the environment"), environment());
    add(QLatin1String("the file mode mask"), fileModeMask());
    add(QLatin1String("the rounding of numbers"), QString::number(std::fegetround()));
    add(QLatin1String("the set of blocked signals"), blockedSignals());
    for (int signal = 1; signal < NSIG; ++signal)
        add(QString::fromLatin1("the handler of signal %1").arg(signal), handlerOf(signal));
}

std::vector<QString> ProcessState::changesTo(const ProcessState &later) const
{
    std::vector<QString> changes;
    for (size_t i = 0; i < m_properties.size(); ++i)
        if (m_properties[i].value != later.m_properties[i].value)
            changes.push_back(m_properties[i].name + QLatin1String(" is another: ") +
                              later.m_properties[i].value.left(200));
    return changes;
}

void ProcessState::add(const QString &name, const QString &value)
{
    m_properties.push_back(Property{name, value});
}

} // namespace kit
