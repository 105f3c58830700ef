// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// hanging_mount FOLDER PROGRAM [ARGUMENT...]: puts a file system over the folder whose server never
// answers, as after the loss of a network, and becomes the program. To be run where mounts are the
// process's own; the file system goes with the program.

#include <cstdio>
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const int server = open("/dev/fuse", O_RDWR);
    char options[100];
    std::snprintf(options, sizeof options, "fd=%d,rootmode=40000,user_id=%u,group_id=%u", server,
                  getuid(), getgid());
    if (server < 0 || mount("hanging", argv[1], "fuse", MS_NOSUID | MS_NODEV, options) != 0) {
        std::perror("hanging_mount");
        return 1;
    }
    execv(argv[2], argv + 2);
    std::perror(argv[2]);
    return 1;
}
