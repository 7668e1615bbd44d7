#include "tests/driverhost/support/pty_program.h"

#include "tests/driverhost/support/host_program.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <array>
#include <cstdio>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace
{

const int Patience = 30000;
const int SignalExit = 128;
const QChar Escape(0x1b);

// How many bytes at the end belong to a character whose rest is still to come.
int incompleteTail(const QByteArray &bytes)
{
    for (int back = 1; back <= 3 && back <= bytes.size(); ++back) {
        const unsigned char byte = static_cast<unsigned char>(bytes.at(bytes.size() - back));
        if (byte < 0x80)
            return 0;
        if (byte >= 0xC0)
            return back < (byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2) ? back : 0;
    }
    return 0;
}

[[noreturn]] void becomeHost(const QStringList &arguments, const QByteArray &locale, const QString &errorFile)
{
    std::vector<QByteArray> words{hostProgram().toLocal8Bit()};
    for (const QString &argument : arguments)
        words.push_back(argument.toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    setenv("TERM", "xterm", 1);
    setenv("LC_ALL", locale.constData(), 1);
    if (!errorFile.isEmpty() && std::freopen(errorFile.toLocal8Bit().constData(), "w", stderr) == nullptr)
        _exit(127);
    execv(argv.front(), argv.data());
    _exit(127);
}

} // namespace

void Screen::feed(const QString &output)
{
    static const QRegularExpression whole(QStringLiteral("^\\x1b\\[([?0-9;]*)([A-Za-z])$"));
    for (const QChar character : output) {
        if (character == Escape || !m_sequence.isEmpty()) {
            m_sequence += character;
            const QRegularExpressionMatch match = whole.match(m_sequence);
            if (match.hasMatch()) {
                control(match.captured(1), match.captured(2).at(0));
                m_sequence.clear();
            }
        } else {
            put(character);
        }
    }
}

void Screen::put(QChar character)
{
    if (character == QLatin1Char('\r')) {
        m_column = 0;
    } else if (character == QLatin1Char('\n')) {
        ++m_row;
        while (m_lines.size() <= m_row)
            m_lines += QString();
    } else {
        QString &line = m_lines[m_row];
        line = line.leftJustified(m_column + 1);
        line[m_column++] = character;
    }
}

void Screen::control(const QString &parameters, QChar command)
{
    if (command == QLatin1Char('A'))
        m_row = qMax(0, m_row - qMax(1, parameters.toInt()));
    else if (command == QLatin1Char('K'))
        m_lines[m_row].truncate(m_column);
    else if (command == QLatin1Char('J'))
        m_lines = m_lines.mid(0, m_row) << m_lines.at(m_row).left(m_column);
    else if (command == QLatin1Char('H'))
        m_row = m_column = 0;
    else if (command == QLatin1Char('h') || command == QLatin1Char('l'))
        setMode(parameters, command == QLatin1Char('h'));
}

void Screen::setMode(const QString &mode, bool isOn)
{
    if (mode == QLatin1String("?25"))
        m_isCursorShown = isOn;
    if (mode != QLatin1String("?1049"))
        return;
    m_lines.swap(m_otherLines);
    std::swap(m_row, m_otherRow);
    m_column = 0;
    if (isOn) {
        m_lines = QStringList{QString()};
        m_row = 0;
    }
}

PtyProgram::PtyProgram(const QStringList &arguments, int columns, int rows, const QByteArray &locale,
                       const QString &errorFile)
{
    winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    m_pid = forkpty(&m_terminal, nullptr, nullptr, &size);
    if (m_pid == 0)
        becomeHost(arguments, locale, errorFile);
}

PtyProgram::~PtyProgram()
{
    if (m_terminal >= 0)
        close(m_terminal);
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

bool PtyProgram::takeOutput(int milliseconds)
{
    pollfd waiting = {m_terminal, POLLIN, 0};
    if (poll(&waiting, 1, milliseconds) != 1)
        return false;
    std::array<char, 4096> bytes = {};
    const ssize_t received = read(m_terminal, bytes.data(), bytes.size());
    if (received <= 0)
        return false;
    m_pending += QByteArray(bytes.data(), static_cast<int>(received));
    const int tail = incompleteTail(m_pending);
    const QString text = QString::fromUtf8(m_pending.left(m_pending.size() - tail));
    m_pending = m_pending.right(tail);
    m_output += text;
    m_screen.feed(text);
    return true;
}

bool PtyProgram::waitForScreen(const std::function<bool(const Screen &)> &condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition(m_screen)) {
        const int left = static_cast<int>(Patience - clock.elapsed());
        if (left <= 0 || !takeOutput(left))
            return false;
    }
    return true;
}

void PtyProgram::type(const QByteArray &keys)
{
    if (write(m_terminal, keys.constData(), static_cast<size_t>(keys.size())) != keys.size())
        m_output += QStringLiteral("(the terminal takes no keys)");
}

void PtyProgram::resize(int columns, int rows)
{
    winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns);
    size.ws_row = static_cast<unsigned short>(rows);
    ioctl(m_terminal, TIOCSWINSZ, &size);
}

int PtyProgram::waitForEnd()
{
    while (takeOutput(Patience)) {
    }
    int status = 0;
    if (!waitUntil([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; }))
        return -1;
    m_pid = -1;
    return WIFSIGNALED(status) ? SignalExit + WTERMSIG(status) : WEXITSTATUS(status);
}
