#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv); // ports on real devices need its event dispatcher
    return RUN_ALL_TESTS();
}
