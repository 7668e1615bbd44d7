#include "tests/binary/verification_text.h"

#include <QLibraryInfo>
#include <QString>

QByteArray expectedVerificationText()
{
    // A loader of Qt 4 compares this with what it was built as itself.
    return QByteArray("pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=" QT_VERSION_STR
                      "\ndebug=false\nbuildkey=") +
           QLibraryInfo::buildKey().toLatin1();
}
