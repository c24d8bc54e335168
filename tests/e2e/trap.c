/* Loaded into a program (LD_PRELOAD) to count its calls of the file system, of all threads in one
 * row, and to end the program at one of them or to make one fail. The loader's own calls do not
 * come through here. Set by the environment:
 *   TRAP_BELOW  only calls below this directory count (all but those of the three streams)
 *   TRAP_READS  calls that change nothing count, too
 *   TRAP_LOG    a file that gets a line for each counted call, or, with TRAP_AT, for those that are
 *               trapped: number, kind, name, path
 *   TRAP_AT     the number of the call that is trapped, from 1
 *   TRAP_DO     "kill" before it, "tear" (half of a write, then kill), "interrupt" (as Ctrl-C does),
 *               or the error that it returns
 *   TRAP_ON     every later call of its kinds fails likewise
 *   TRAP_MEMORY the number of the allocation that fails, from 1, and with TRAP_ON all later ones;
 *               "0" has the log get their number at the end */
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

enum { READS, CHANGES };
enum { GO_ON = 0, TEAR = -1 };

static atomic_long calls;
static long trapped, error_number;
static int kills, tears, interrupts, later_too, reads_count, log_file = -1;
static const char *below;
static atomic_long allocations;
static long starved = -1; /* until main(): what stands before it has nobody to say so yet */
static long (*system_call)(long, ...);

/* Other libraries may begin, and call, before this one. */
static void find_system_call(void) {
    if (!system_call) system_call = (long (*)(long, ...))dlsym(RTLD_NEXT, "syscall");
}

__attribute__((constructor)) static void start(void) {
    find_system_call();
    const char *text = getenv("TRAP_AT");
    trapped = text ? atol(text) : 0;
    text = getenv("TRAP_DO");
    kills = text && !strcmp(text, "kill");
    interrupts = text && !strcmp(text, "interrupt");
    tears = text && !strcmp(text, "tear");
    error_number = text ? atol(text) : 0;
    later_too = getenv("TRAP_ON") != NULL;
    reads_count = getenv("TRAP_READS") != NULL;
    below = getenv("TRAP_BELOW");
    text = getenv("TRAP_LOG");
    if (text) {
        log_file = (int)system_call(SYS_openat, AT_FDCWD, text,
                                    O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }
}

typedef int (*Main)(int, char **, char **);
static Main real_main;

static int starved_main(int count, char **values, char **environment) {
    const char *text = getenv("TRAP_MEMORY");
    starved = text ? atol(text) : -1;
    return real_main(count, values, environment);
}

int __libc_start_main(Main program, int count, char **values, void (*begin)(void),
                      void (*end)(void), void (*unload)(void), void *stack) {
    real_main = program;
    int (*real)(Main, int, char **, void (*)(void), void (*)(void), void (*)(void), void *) =
        dlsym(RTLD_NEXT, "__libc_start_main");
    return real(starved_main, count, values, begin, end, unload, stack);
}

__attribute__((destructor)) static void tell_allocations(void) {
    if (starved != 0 || log_file < 0) return;
    char line[32];
    int size = snprintf(line, sizeof line, "%ld m\n", atomic_load(&allocations));
    system_call(SYS_write, log_file, line, (long)size);
}

void *__libc_malloc(size_t);
void *malloc(size_t size) {
    if (starved >= 0) {
        long number = atomic_fetch_add(&allocations, 1) + 1;
        if (starved && (number == starved || (later_too && number > starved))) {
            errno = ENOMEM;
            return NULL;
        }
    }
    return __libc_malloc(size);
}

static void die(void) { system_call(SYS_kill, system_call(SYS_getpid), SIGKILL); }

static void path_of(int fd, const char *name, char *path) {
    path[0] = 0;
    if (name && name[0] == '/') {
        snprintf(path, PATH_MAX, "%s", name);
        return;
    }
    char link[64];
    if (fd == AT_FDCWD) {
        snprintf(link, sizeof link, "/proc/self/cwd");
    } else {
        snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    }
    long length = system_call(SYS_readlinkat, AT_FDCWD, link, path, PATH_MAX - 1);
    path[length < 0 ? 0 : length] = 0;
    if (name && name[0]) {
        size_t used = strlen(path);
        snprintf(path + used, PATH_MAX - used, "/%s", name);
    }
}

/* GO_ON, TEAR, or the error that the call is to return. */
static int trap(int kind, const char *call, int fd, const char *name) {
    if (kind == READS && !reads_count) return GO_ON;
    if (fd >= 0 && fd <= 2 && !name) return GO_ON;
    int saved = errno;
    char path[PATH_MAX];
    find_system_call();
    path_of(fd, name, path);
    if (below && strncmp(path, below, strlen(below))) {
        errno = saved;
        return GO_ON;
    }
    long number = atomic_fetch_add(&calls, 1) + 1;
    int hit = number == trapped || (later_too && trapped && number > trapped);
    if (log_file >= 0 && (hit || !trapped)) {
        char line[PATH_MAX + 64];
        int size = snprintf(line, sizeof line, "%ld %c %s %s\n", number,
                            kind == CHANGES ? 'c' : 'r', call, path);
        system_call(SYS_write, log_file, line, (long)size);
    }
    errno = saved;
    if (!hit) return GO_ON;
    if (kills) die();
    if (interrupts) {
        system_call(SYS_kill, system_call(SYS_getpid), SIGINT);
        return GO_ON;
    }
    return tears ? TEAR : (int)error_number;
}

#define REAL(type, name, ...) \
    static type (*real)(__VA_ARGS__); \
    if (!real) real = (type(*)(__VA_ARGS__))dlsym(RTLD_NEXT, #name)
#define STOP(kind, call, fd, path, failed)           \
    do {                                             \
        int outcome = trap(kind, call, fd, path);    \
        if (outcome == TEAR) die();                  \
        if (outcome != GO_ON) {                      \
            errno = outcome;                         \
            return failed;                           \
        }                                            \
    } while (0)

int openat(int directory, const char *path, int flags, ...) {
    mode_t mode = 0;
    if (flags & (O_CREAT | __O_TMPFILE)) {
        va_list more;
        va_start(more, flags);
        mode = va_arg(more, mode_t);
        va_end(more);
    }
    REAL(int, openat, int, const char *, int, ...);
    STOP(flags & (O_CREAT | O_TRUNC) ? CHANGES : READS, "openat", directory, path, -1);
    return real(directory, path, flags, mode);
}

long syscall(long number, ...) {
    va_list more;
    va_start(more, number);
    long a = va_arg(more, long), b = va_arg(more, long), c = va_arg(more, long);
    long d = va_arg(more, long), e = va_arg(more, long), f = va_arg(more, long);
    va_end(more);
    find_system_call();
    if (number == SYS_openat2) STOP(READS, "openat2", (int)a, (const char *)b, -1);
    return system_call(number, a, b, c, d, e, f);
}

ssize_t write(int fd, const void *bytes, size_t size) {
    REAL(ssize_t, write, int, const void *, size_t);
    int outcome = trap(CHANGES, "write", fd, NULL);
    if (outcome == TEAR) {
        real(fd, bytes, size / 2);
        die();
    }
    if (outcome != GO_ON) {
        errno = outcome;
        return -1;
    }
    return real(fd, bytes, size);
}

ssize_t pwrite(int fd, const void *bytes, size_t size, off_t offset) {
    REAL(ssize_t, pwrite, int, const void *, size_t, off_t);
    STOP(CHANGES, "pwrite", fd, NULL, -1);
    return real(fd, bytes, size, offset);
}

int ftruncate(int fd, off_t size) {
    REAL(int, ftruncate, int, off_t);
    STOP(CHANGES, "ftruncate", fd, NULL, -1);
    return real(fd, size);
}

int fallocate(int fd, int mode, off_t offset, off_t size) {
    REAL(int, fallocate, int, int, off_t, off_t);
    STOP(CHANGES, "fallocate", fd, NULL, -1);
    return real(fd, mode, offset, size);
}

int mkdirat(int directory, const char *path, mode_t mode) {
    REAL(int, mkdirat, int, const char *, mode_t);
    STOP(CHANGES, "mkdirat", directory, path, -1);
    return real(directory, path, mode);
}

int unlinkat(int directory, const char *path, int flags) {
    REAL(int, unlinkat, int, const char *, int);
    STOP(CHANGES, "unlinkat", directory, path, -1);
    return real(directory, path, flags);
}

int renameat(int from, const char *old, int to, const char *path) {
    REAL(int, renameat, int, const char *, int, const char *);
    STOP(CHANGES, "renameat", to, path, -1);
    return real(from, old, to, path);
}

int renameat2(int from, const char *old, int to, const char *path, unsigned flags) {
    REAL(int, renameat2, int, const char *, int, const char *, unsigned);
    STOP(CHANGES, "renameat2", to, path, -1);
    return real(from, old, to, path, flags);
}

int linkat(int from, const char *old, int to, const char *path, int flags) {
    REAL(int, linkat, int, const char *, int, const char *, int);
    STOP(CHANGES, "linkat", to, path, -1);
    return real(from, old, to, path, flags);
}

int symlinkat(const char *target, int directory, const char *path) {
    REAL(int, symlinkat, const char *, int, const char *);
    STOP(CHANGES, "symlinkat", directory, path, -1);
    return real(target, directory, path);
}

int fchmod(int fd, mode_t mode) {
    REAL(int, fchmod, int, mode_t);
    STOP(CHANGES, "fchmod", fd, NULL, -1);
    return real(fd, mode);
}

int chmod(const char *path, mode_t mode) {
    REAL(int, chmod, const char *, mode_t);
    STOP(CHANGES, "chmod", AT_FDCWD, path, -1);
    return real(path, mode);
}

int fchmodat(int directory, const char *path, mode_t mode, int flags) {
    REAL(int, fchmodat, int, const char *, mode_t, int);
    STOP(CHANGES, "fchmodat", directory, path, -1);
    return real(directory, path, mode, flags);
}

int fchown(int fd, uid_t user, gid_t group) {
    REAL(int, fchown, int, uid_t, gid_t);
    STOP(CHANGES, "fchown", fd, NULL, -1);
    return real(fd, user, group);
}

int fchownat(int directory, const char *path, uid_t user, gid_t group, int flags) {
    REAL(int, fchownat, int, const char *, uid_t, gid_t, int);
    STOP(CHANGES, "fchownat", directory, path, -1);
    return real(directory, path, user, group, flags);
}

int futimens(int fd, const struct timespec times[2]) {
    REAL(int, futimens, int, const struct timespec *);
    STOP(CHANGES, "futimens", fd, NULL, -1);
    return real(fd, times);
}

int utimensat(int directory, const char *path, const struct timespec times[2], int flags) {
    REAL(int, utimensat, int, const char *, const struct timespec *, int);
    STOP(CHANGES, "utimensat", directory, path, -1);
    return real(directory, path, times, flags);
}

int fsync(int fd) {
    REAL(int, fsync, int);
    STOP(CHANGES, "fsync", fd, NULL, -1);
    return real(fd);
}

int fdatasync(int fd) {
    REAL(int, fdatasync, int);
    STOP(CHANGES, "fdatasync", fd, NULL, -1);
    return real(fd);
}

int syncfs(int fd) {
    REAL(int, syncfs, int);
    STOP(CHANGES, "syncfs", fd, NULL, -1);
    return real(fd);
}

/* What was written may turn out lost here; the descriptor is gone all the same. */
int close(int fd) {
    REAL(int, close, int);
    int outcome = trap(READS, "close", fd, NULL);
    if (outcome == TEAR) die();
    int done = real(fd);
    if (outcome != GO_ON) {
        errno = outcome;
        return -1;
    }
    return done;
}

ssize_t read(int fd, void *bytes, size_t size) {
    REAL(ssize_t, read, int, void *, size_t);
    STOP(READS, "read", fd, NULL, -1);
    return real(fd, bytes, size);
}

ssize_t pread(int fd, void *bytes, size_t size, off_t offset) {
    REAL(ssize_t, pread, int, void *, size_t, off_t);
    STOP(READS, "pread", fd, NULL, -1);
    return real(fd, bytes, size, offset);
}

int statx(int directory, const char *path, int flags, unsigned mask, struct statx *found) {
    REAL(int, statx, int, const char *, int, unsigned, struct statx *);
    STOP(READS, "statx", directory, path, -1);
    return real(directory, path, flags, mask, found);
}

int fstat(int fd, struct stat *found) {
    REAL(int, fstat, int, struct stat *);
    STOP(READS, "fstat", fd, NULL, -1);
    return real(fd, found);
}

int fstatat(int directory, const char *path, struct stat *found, int flags) {
    REAL(int, fstatat, int, const char *, struct stat *, int);
    STOP(READS, "fstatat", directory, path, -1);
    return real(directory, path, found, flags);
}

int fstatfs(int fd, struct statfs *found) {
    REAL(int, fstatfs, int, struct statfs *);
    STOP(READS, "fstatfs", fd, NULL, -1);
    return real(fd, found);
}

DIR *opendir(const char *path) {
    REAL(DIR *, opendir, const char *);
    STOP(READS, "opendir", AT_FDCWD, path, NULL);
    return real(path);
}

DIR *fdopendir(int fd) {
    REAL(DIR *, fdopendir, int);
    STOP(READS, "fdopendir", fd, NULL, NULL);
    return real(fd);
}

struct dirent *readdir(DIR *listing) {
    REAL(struct dirent *, readdir, DIR *);
    STOP(READS, "readdir", dirfd(listing), NULL, NULL);
    return real(listing);
}

ssize_t readlinkat(int directory, const char *path, char *text, size_t size) {
    REAL(ssize_t, readlinkat, int, const char *, char *, size_t);
    STOP(READS, "readlinkat", directory, path, -1);
    return real(directory, path, text, size);
}

off_t lseek(int fd, off_t offset, int whence) {
    REAL(off_t, lseek, int, off_t, int);
    STOP(READS, "lseek", fd, NULL, -1);
    return real(fd, offset, whence);
}

int flock(int fd, int operation) {
    REAL(int, flock, int, int);
    STOP(READS, "flock", fd, NULL, -1);
    return real(fd, operation);
}

int fcntl(int fd, int command, ...) {
    va_list more;
    va_start(more, command);
    void *argument = va_arg(more, void *);
    va_end(more);
    REAL(int, fcntl, int, int, ...);
    STOP(READS, "fcntl", fd, NULL, -1);
    return real(fd, command, argument);
}
