#include <clocale>

#include <QApplication>

#include <gtest/gtest.h>

#include "tests/app/private_settings.h"

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const PrivateSettings settings;
    QApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
