// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Writes pictures of KWin's outputs to files: a program of the desktop's own user, whom KWin can
// look up in its desktop files. Each line of standard input is an output and a path; the answer is
// "yes" or "no".

#include "support/KWinEye.h"

#include <QCoreApplication>
#include <QImage>

#include <iostream>
#include <string>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    tovek::KWinEye eye(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    std::string output, path;
    while (std::cin >> output >> path) {
        const QImage picture = eye.look(QString::fromStdString(output));
        const bool isSaved = !picture.isNull() && picture.save(QString::fromStdString(path), "PPM");
        std::cout << (isSaved ? "yes" : "no") << std::endl;
    }
}
