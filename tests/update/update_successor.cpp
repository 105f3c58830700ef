// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A new version for tests: a program for this machine that tells beside itself how it was started.

#include <fstream>
#include <string>

int main(int argc, char **argv)
{
    std::ofstream out(std::string(argv[0]) + ".started");
    out << "started";
    for (int i = 1; i < argc; ++i)
        out << ' ' << argv[i];
    out << '\n';
    return 0;
}
