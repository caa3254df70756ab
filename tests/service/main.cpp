#include <QCoreApplication>

#include <gtest/gtest.h>

// The tests' own bus connections deliver replies and signals through this thread's event loop.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
