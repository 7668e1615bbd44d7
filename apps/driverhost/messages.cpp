#include "messages.h"

#include <cstdio>

void complain(const QString &text)
{
    tell(QStringLiteral("driverhost: ") + text);
}

void tell(const QString &text)
{
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}
