#pragma once

#include <sys/stat.h>

#include "system_calls.hpp"

/// The system calls that read and write a store.
WRAP(int, openat, (int folder, const char* name, int flags, mode_t mode), (folder, name, flags, mode))
WRAP(int, fstat, (int file, struct stat* found), (file, found))
WRAP(int, lstat, (const char* path, struct stat* found), (path, found))
WRAP(ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count))
WRAP(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count))
WRAP(int, fsync, (int file), (file))
WRAP(int, flock, (int file, int operation), (file, operation))
WRAP(int, fchmod, (int file, mode_t mode), (file, mode))
WRAP(int, fchmodat, (int folder, const char* name, mode_t mode, int flags), (folder, name, mode, flags))
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode))
WRAP(int, unlinkat, (int folder, const char* name, int flags), (folder, name, flags))
WRAP(int, linkat, (int from, const char* name, int to, const char* other, int flags),
     (from, name, to, other, flags))
WRAP(int, renameat, (int from, const char* name, int to, const char* other), (from, name, to, other))
WRAP(int, renameat2, (int from, const char* name, int to, const char* other, unsigned flags),
     (from, name, to, other, flags))
