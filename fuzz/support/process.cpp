#include <QCoreApplication>

#include <cstdio>

namespace
{

void keepFatalMessages(QtMsgType type, const QMessageLogContext & /*context*/, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

// The driver finds its database by the application's directory, and QtSql its plug-ins.
// NOLINTNEXTLINE(readability-non-const-parameter): libFuzzer declares it so
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const QCoreApplication application(*argc, *argv);
    qInstallMessageHandler(keepFatalMessages);
    return 0;
}
