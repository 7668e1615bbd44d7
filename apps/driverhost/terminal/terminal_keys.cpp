#include "apps/driverhost/terminal/terminal_keys.h"

#include "drivers/qt/qt_lines.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace
{

// A signal handler needs them.
termios formerMode;
termios keyMode;
struct sigaction formerStop;
const char *enterSequence = "";
const char *leaveSequence = "";
bool areTaken = false;

// A program in the background that touched the terminal would be stopped.
bool isForeground()
{
    return isatty(STDIN_FILENO) == 1 && tcgetpgrp(STDIN_FILENO) == getpgrp();
}

void writeSequence(const char *sequence)
{
    [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, sequence, strlen(sequence));
}

// Ctrl-Z: the shell gets its terminal back until the program goes on.
void stopHere(int /*signal*/)
{
    const int formerError = errno;
    writeSequence(leaveSequence);
    tcsetattr(STDIN_FILENO, TCSANOW, &formerMode);
    raise(SIGSTOP);
    if (isForeground())
        tcsetattr(STDIN_FILENO, TCSANOW, &keyMode);
    writeSequence(enterSequence);
    errno = formerError;
}

// One character, or the sequence of a key.
int sizeOfKey(const QByteArray &bytes)
{
    if (!bytes.startsWith("\x1b["))
        return 1;
    for (int i = 2; i < bytes.size(); ++i) {
        if (bytes.at(i) >= '@' && bytes.at(i) <= '~')
            return i + 1;
    }
    return sizeOf(bytes);
}

} // namespace

void takeKeys(const char *enter, const char *leave)
{
    enterSequence = enter;
    leaveSequence = leave;
    if (!isForeground() || tcgetattr(STDIN_FILENO, &formerMode) != 0)
        return;
    keyMode = formerMode;
    keyMode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    areTaken = tcsetattr(STDIN_FILENO, TCSANOW, &keyMode) == 0;
    struct sigaction action = {};
    action.sa_handler = stopHere;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTSTP, &action, &formerStop);
}

void releaseKeys()
{
    if (!areTaken)
        return;
    areTaken = false;
    sigaction(SIGTSTP, &formerStop, nullptr);
    if (isForeground())
        tcsetattr(STDIN_FILENO, TCSANOW, &formerMode);
}

QByteArrayList typedKeys()
{
    QByteArrayList keys;
    pollfd waiting = {STDIN_FILENO, POLLIN, 0};
    std::array<char, 256> bytes = {};
    while (areTaken && isForeground() && poll(&waiting, 1, 0) == 1) {
        const ssize_t size = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (size <= 0)
            break;
        for (QByteArray typed(bytes.data(), static_cast<int>(size)); !typed.isEmpty();) {
            const int keySize = sizeOfKey(typed);
            keys += typed.left(keySize);
            typed.remove(0, keySize);
        }
    }
    return keys;
}
