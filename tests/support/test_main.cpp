#include <clocale>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // As a Qt application does at its start: the tests must hold under the locale of their user.
    std::setlocale(LC_ALL, "");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
