#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    // The driver finds its database by the application's directory, and QtSql its plug-ins.
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
