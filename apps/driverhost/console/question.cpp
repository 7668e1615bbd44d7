#include "apps/driverhost/console/question.h"

#include "apps/driverhost/terminal/status_line.h"

#include <QByteArray>

#include <cstdio>
#include <unistd.h>

bool canAsk()
{
    return isatty(STDIN_FILENO) == 1;
}

bool askYesOrNo(const QString &question)
{
    clearStatus();
    std::fprintf(stderr, "%s [y/N] ", question.toLocal8Bit().constData());
    std::fflush(stderr);
    char answer[16] = {};
    if (std::fgets(answer, sizeof answer, stdin) == nullptr) {
        std::fputc('\n', stderr);
        return false;
    }
    const QByteArray word = QByteArray(answer).trimmed().toLower();
    return word == "y" || word == "yes";
}
