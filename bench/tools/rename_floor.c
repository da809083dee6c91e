// The floor a Trash cannot beat: renaming every entry of one folder into another on the same file
// system, optionally writing one small info file per entry first as the FreeDesktop.org Trash
// requires. Prints the seconds taken.
//
//   rename_floor FROM TO [INFO]     (INFO: the folder the info files go to)
#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: rename_floor FROM TO [INFO]\n");
        return 2;
    }
    DIR* dir = opendir(argv[1]);
    if (!dir) return perror(argv[1]), 1;
    size_t n = 0, cap = 1024;
    char** names = malloc(cap * sizeof *names);
    for (struct dirent* e; (e = readdir(dir));) {
        if (!strcmp(e->d_name, ".") || !strcmp(e->d_name, "..")) continue;
        if (n == cap) names = realloc(names, (cap *= 2) * sizeof *names);
        names[n++] = strdup(e->d_name);
    }
    closedir(dir);
    const int from = open(argv[1], O_RDONLY | O_DIRECTORY), to = open(argv[2], O_RDONLY | O_DIRECTORY);
    const int info = argc > 3 ? open(argv[3], O_RDONLY | O_DIRECTORY) : -1;
    const double start = now();
    for (size_t i = 0; i < n; ++i) {
        if (info >= 0) {
            char infoName[300], text[600];
            snprintf(infoName, sizeof infoName, "%s.trashinfo", names[i]);
            const int len = snprintf(text, sizeof text, "[Trash Info]\nPath=/%s\nDeletionDate=2025-01-01T00:00:00\n", names[i]);
            const int fd = openat(info, infoName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
            if (fd < 0 || write(fd, text, (size_t)len) != len) return perror(infoName), 1;
            close(fd);
        }
        if (renameat2(from, names[i], to, names[i], RENAME_NOREPLACE) != 0) return perror(names[i]), 1;
    }
    printf("%.4f\n", now() - start);
    return 0;
}
