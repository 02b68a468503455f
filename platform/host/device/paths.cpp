// SPDX-License-Identifier: Apache-2.0
//
// The calls that take a path and have no faults. Each maps its paths and calls libc's function.
#include <dirent.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utime.h>

#include <cstdio>
#include <cstdlib>

#include "device/next.h"
#include "device/tree.h"

// Defines a function whose argument `path`, and in the second form also `to`, is mapped. PARAMETERS
// are those of the function, and the arguments for libc's follow, with PATH and TO for the paths.
#define MAPPED(Result, name, PARAMETERS, ...) \
  Result name PARAMETERS {                    \
    NEXT(name);                               \
    const fp_host::TreePath mapped(path);     \
    return next(__VA_ARGS__);                 \
  }
#define MAPPED_BOTH(Result, name, PARAMETERS, ...) \
  Result name PARAMETERS {                         \
    NEXT(name);                                    \
    const fp_host::TreePath mapped(path);          \
    const fp_host::TreePath mapped_to(to);         \
    return next(__VA_ARGS__);                      \
  }
#define PATH mapped.Get()
#define TO mapped_to.Get()

extern "C" {

// What a fortified program calls instead of open(), readlink(), readlinkat() and realpath().
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming,android-cloexec-*)
int __open_2(const char* path, int flags) { return open(path, flags); }
int __open64_2(const char* path, int flags) { return open64(path, flags); }
int __openat_2(int folder, const char* path, int flags) { return openat(folder, path, flags); }
int __openat64_2(int folder, const char* path, int flags) { return openat64(folder, path, flags); }
MAPPED(ssize_t, __readlink_chk, (const char* path, char* out, size_t size, size_t capacity), PATH,
       out, size, capacity)
MAPPED(ssize_t, __readlinkat_chk,
       (int folder, const char* path, char* out, size_t size, size_t capacity), folder, PATH, out,
       size, capacity)
MAPPED(char*, __realpath_chk, (const char* path, char* out, size_t capacity), PATH, out, capacity)
int creat(const char* path, mode_t mode) { return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode); }
int creat64(const char* path, mode_t mode) { return creat(path, mode); }
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming,android-cloexec-*)

MAPPED(FILE*, freopen, (const char* path, const char* mode, FILE* file), PATH, mode, file)
MAPPED(FILE*, freopen64, (const char* path, const char* mode, FILE* file), PATH, mode, file)

MAPPED(int, stat, (const char* path, struct stat* out), PATH, out)
MAPPED(int, stat64, (const char* path, struct stat64* out), PATH, out)
MAPPED(int, lstat, (const char* path, struct stat* out), PATH, out)
MAPPED(int, lstat64, (const char* path, struct stat64* out), PATH, out)
MAPPED(int, fstatat, (int folder, const char* path, struct stat* out, int flags), folder, PATH, out,
       flags)
MAPPED(int, fstatat64, (int folder, const char* path, struct stat64* out, int flags), folder, PATH,
       out, flags)
MAPPED(int, statfs, (const char* path, struct statfs* out), PATH, out)
MAPPED(int, statfs64, (const char* path, struct statfs64* out), PATH, out)
MAPPED(int, statvfs, (const char* path, struct statvfs* out), PATH, out)
MAPPED(int, statvfs64, (const char* path, struct statvfs64* out), PATH, out)
MAPPED(int, access, (const char* path, int mode), PATH, mode)
MAPPED(int, faccessat, (int folder, const char* path, int mode, int flags), folder, PATH, mode,
       flags)
MAPPED(int, euidaccess, (const char* path, int mode), PATH, mode)
MAPPED(int, eaccess, (const char* path, int mode), PATH, mode)
MAPPED(long, pathconf, (const char* path, int name), PATH, name)
MAPPED(ssize_t, getxattr, (const char* path, const char* name, void* value, size_t size), PATH,
       name, value, size)
MAPPED(ssize_t, lgetxattr, (const char* path, const char* name, void* value, size_t size), PATH,
       name, value, size)
MAPPED(int, setxattr,
       (const char* path, const char* name, const void* value, size_t size, int flags), PATH, name,
       value, size, flags)
MAPPED(int, lsetxattr,
       (const char* path, const char* name, const void* value, size_t size, int flags), PATH, name,
       value, size, flags)
MAPPED(ssize_t, listxattr, (const char* path, char* list, size_t size), PATH, list, size)
MAPPED(ssize_t, llistxattr, (const char* path, char* list, size_t size), PATH, list, size)
MAPPED(int, removexattr, (const char* path, const char* name), PATH, name)
MAPPED(int, lremovexattr, (const char* path, const char* name), PATH, name)

MAPPED(DIR*, opendir, (const char* path), PATH)
MAPPED(int, scandir,
       (const char* path, dirent*** out, int (*filter)(const dirent*),
        int (*order)(const dirent**, const dirent**)),
       PATH, out, filter, order)
MAPPED(int, scandir64,
       (const char* path, dirent64*** out, int (*filter)(const dirent64*),
        int (*order)(const dirent64**, const dirent64**)),
       PATH, out, filter, order)
MAPPED(int, chdir, (const char* path), PATH)
MAPPED(char*, realpath, (const char* path, char* out), PATH, out)
MAPPED(char*, canonicalize_file_name, (const char* path), PATH)
MAPPED(ssize_t, readlink, (const char* path, char* out, size_t size), PATH, out, size)
MAPPED(ssize_t, readlinkat, (int folder, const char* path, char* out, size_t size), folder, PATH,
       out, size)

MAPPED(int, mkdirat, (int folder, const char* path, mode_t mode), folder, PATH, mode)
MAPPED(int, mkfifo, (const char* path, mode_t mode), PATH, mode)
MAPPED(int, mkfifoat, (int folder, const char* path, mode_t mode), folder, PATH, mode)
MAPPED(int, mknod, (const char* path, mode_t mode, dev_t device), PATH, mode, device)
MAPPED(int, mknodat, (int folder, const char* path, mode_t mode, dev_t device), folder, PATH, mode,
       device)
MAPPED(int, rmdir, (const char* path), PATH)
MAPPED(int, remove, (const char* path), PATH)
MAPPED(int, unlinkat, (int folder, const char* path, int flags), folder, PATH, flags)
MAPPED_BOTH(int, renameat, (int from_folder, const char* path, int to_folder, const char* to),
            from_folder, PATH, to_folder, TO)
MAPPED_BOTH(int, link, (const char* path, const char* to), PATH, TO)
MAPPED_BOTH(int, linkat,
            (int from_folder, const char* path, int to_folder, const char* to, int flags),
            from_folder, PATH, to_folder, TO, flags)
// The target stays as given: as a path of the phone.
MAPPED(int, symlink, (const char* target, const char* path), target, PATH)
MAPPED(int, symlinkat, (const char* target, int folder, const char* path), target, folder, PATH)

MAPPED(int, chmod, (const char* path, mode_t mode), PATH, mode)
MAPPED(int, fchmodat, (int folder, const char* path, mode_t mode, int flags), folder, PATH, mode,
       flags)
MAPPED(int, chown, (const char* path, uid_t owner, gid_t group), PATH, owner, group)
MAPPED(int, lchown, (const char* path, uid_t owner, gid_t group), PATH, owner, group)
MAPPED(int, fchownat, (int folder, const char* path, uid_t owner, gid_t group, int flags), folder,
       PATH, owner, group, flags)
MAPPED(int, truncate, (const char* path, off_t size), PATH, size)
MAPPED(int, truncate64, (const char* path, off64_t size), PATH, size)
MAPPED(int, utime, (const char* path, const utimbuf* times), PATH, times)
MAPPED(int, utimes, (const char* path, const timeval times[2]), PATH, times)
MAPPED(int, lutimes, (const char* path, const timeval times[2]), PATH, times)
MAPPED(int, utimensat, (int folder, const char* path, const timespec times[2], int flags), folder,
       PATH, times, flags)
MAPPED(int, inotify_add_watch, (int fd, const char* path, uint32_t mask), fd, PATH, mask)

#if __GLIBC_PREREQ(2, 28)  // the C library that Soong builds host programs with has neither
MAPPED(int, statx, (int folder, const char* path, int flags, unsigned int mask, struct statx* out),
       folder, PATH, flags, mask, out)
MAPPED_BOTH(int, renameat2,
            (int from_folder, const char* path, int to_folder, const char* to, unsigned int flags),
            from_folder, PATH, to_folder, TO, flags)
#endif

}  // extern "C"
