#include "tests/support/gtest_qt.h"

#include "tests/doubles/frames.h"

#include <ostream>

void PrintTo(const QByteArray &bytes, std::ostream *out)
{
    *out << bytes.size() << " bytes: " << toHex(bytes);
}

void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toUtf8().constData() << '"';
}
