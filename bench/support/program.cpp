#include "bench/support/program.h"

#include <QCoreApplication>

#include <iostream>
#include <stdexcept>

int runProgram(int argc, char **argv, const char *usage, const std::function<void(const QStringList &)> &work)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() != QString::fromLatin1(usage).split(QLatin1Char(' '), Qt::SkipEmptyParts).size()) {
        std::cerr << "arguments: " << usage << '\n';
        return 2;
    }
    try {
        work(arguments);
        return 0;
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
