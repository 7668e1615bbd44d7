#include "tests/peers/test_files.h"

QString pluginFile()
{
    return QStringLiteral(PLUGIN_FILE);
}

QString sourceFile(const QString &path)
{
    return QStringLiteral(SOURCE_FOLDER "/") + path;
}
