// Entry point of the GUI test executables (see TestEnvironment.h).
#include "support/TestEnvironment.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    const std::string folder = prepareTestEnvironment();
    int result = 0;
    {
        QApplication app(argc, argv);
        ::testing::InitGoogleTest(&argc, argv);
        result = RUN_ALL_TESTS();
    }
    removeTestEnvironment(folder);
    return result;
}
