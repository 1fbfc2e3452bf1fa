#include <gmock/gmock.h>

#include <QCoreApplication>

// The main thread's event loop belongs to the application: what is handed over to the main thread runs in it.
int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
