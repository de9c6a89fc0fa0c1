#include <gtest/gtest.h>

#include <QCoreApplication>

// The message bus delivers on the application's thread, so the suite runs with one.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
