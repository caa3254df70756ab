#include <QCoreApplication>

#include <gtest/gtest.h>

// The agent delivers the worker's answers through this thread's event loop.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
