#include "app/tarnwick_app.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <clocale>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    tarnwick::CTarnwickApp::PrepareToolkit();
    QApplication toolkit(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    return RUN_ALL_TESTS();
}
