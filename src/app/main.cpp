// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QApplication>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    return QApplication::exec();
}
