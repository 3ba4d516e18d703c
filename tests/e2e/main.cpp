// SPDX-License-Identifier: MIT
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int count, char** arguments) {
    const QCoreApplication application{count, arguments}; // which QtDBus wants
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
