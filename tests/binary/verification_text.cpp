#include "tests/binary/verification_text.h"

QByteArray expectedVerificationText()
{
    return "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.6\ndebug=false\n"
           "buildkey=arm linux g++-4 no-pkg-config";
}
