#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

// Windows are drawn offscreen, and settings are not the user's.
int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("driverdesk"));
    QApplication::setApplicationName(QStringLiteral("driverdesk-test"));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
