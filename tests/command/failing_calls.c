/* Preloaded: makes calls fail as FAIL has it, "NAME FROM COUNT ERROR": of the calls of that name
   the FROMth, counted from 0, and the COUNT - 1 behind it, with that errno; where ERROR is 0, reads
   and writes do a single byte instead. With COUNT 0 a signal comes behind the call. "stack": the
   FROMth allocation of another thread than the first one has no end of stack. At the end the names
   of the calls are written to CALLS, allocations as their number in front, and how many of them
   come behind the first name that an output gets. */
#define _GNU_SOURCE
#undef _FORTIFY_SOURCE
/* Declared with an ellipsis, which cannot be passed on. */
#define open declared_open
#define openat declared_openat
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#undef open
#undef openat
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern void *__libc_malloc(size_t);
extern void *__libc_calloc(size_t, size_t);
extern void *__libc_realloc(void *, size_t);

static struct {
    char name[16];
    unsigned from, count;
    int error;
    atomic_uint met;
} fault;

static atomic_uint allocations;
static atomic_uint allocations_behind; // the first output that got its name
static atomic_int named;
static char called[1 << 20];
static atomic_uint called_bytes;

static void read_fault(void) {
    const char *text = getenv("FAIL");
    if (text != NULL && fault.name[0] == '\0') {
        sscanf(text, "%15s %u %u %d", fault.name, &fault.from, &fault.count, &fault.error);
    }
}

__attribute__((destructor)) static void write_calls(void) {
    const char *calls = getenv("CALLS");
    if (calls != NULL) {
        const int file = (int)syscall(SYS_openat, AT_FDCWD, calls, O_WRONLY | O_CREAT, 0600);
        dprintf(file, "%u %u%s\n", atomic_load(&allocations), atomic_load(&allocations_behind),
                called);
        syscall(SYS_close, file);
    }
}

static void note(const char *name) {
    if (strcmp(name, "renameat2") == 0) {
        atomic_store(&named, 1);
    }
    const size_t size = strlen(name) + 1;
    const unsigned at = atomic_fetch_add(&called_bytes, (unsigned)size);
    if (at + size < sizeof called) {
        called[at] = ' ';
        memcpy(&called[at + 1], name, size - 1);
    }
}

static _Thread_local int signal_due;

static void end_call(void) {
    if (signal_due) {
        signal_due = 0;
        raise(SIGTERM);
    }
}

static int fails(const char *name) {
    read_fault();
    if (strcmp(name, fault.name) != 0) {
        return 0;
    }
    const unsigned number = atomic_fetch_add(&fault.met, 1);
    signal_due = number == fault.from && fault.count == 0;
    errno = fault.error;
    return number >= fault.from && number - fault.from < fault.count;
}

/* Names of temporary files, for the processes that "each" makes. */
static char made[8][4096], kept[8][4100];
static int made_count;

/* Whether this is a process of its own, in which the allocation fails. The other one goes on as if
   nothing had been, once it has seen that this ends with exit code 3 and takes its files along. */
static int is_failing_twin(void) {
    if (strcmp(fault.name, "each") != 0 || atomic_fetch_add(&fault.met, 1) % fault.from != 0) {
        return 0;
    }
    for (int i = 0; i < made_count; ++i) {
        link(made[i], kept[i]);
    }
    const pid_t twin = fork();
    if (twin == 0) {
        strcpy(fault.name, fault.count == 1 ? "none" : "malloc");
        fault.from = 0;
        atomic_store(&fault.met, 0);
        errno = ENOMEM;
        return 1;
    }
    int status = 0, left = 0;
    waitpid(twin, &status, 0);
    for (int i = 0; i < made_count; ++i) {
        if (access(kept[i], F_OK) == 0) {
            left += access(made[i], F_OK) == 0;
            (rename)(kept[i], made[i]);
        }
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 3 || left != 0) {
        dprintf(STDERR_FILENO, "%u: status %x, %d files left\n", atomic_load(&fault.met) - 1,
                (unsigned)status, left);
    }
    return 0;
}

static int endless(volatile char *above) {
    volatile char room[4096];
    room[0] = *above;
    return endless(room) + room[0];
}

static int allocation_fails(void) {
    atomic_fetch_add(&allocations, 1);
    atomic_fetch_add(&allocations_behind, (unsigned)atomic_load(&named));
    if (strcmp(fault.name, "stack") == 0 && gettid() != getpid() && fails("stack")) {
        char above = 0;
        endless(&above);
    }
    return is_failing_twin() || fails("malloc");
}

void *malloc(size_t size) {
    return allocation_fails() ? NULL : __libc_malloc(size);
}

void *calloc(size_t count, size_t size) {
    return allocation_fails() ? NULL : __libc_calloc(count, size);
}

void *realloc(void *block, size_t size) {
    return allocation_fails() ? NULL : __libc_realloc(block, size);
}

#define CALL(type, name, failure, before, parameters, ...)                                         \
    type name parameters {                                                                         \
        static type(*next) parameters;                                                             \
        if (next == NULL) {                                                                        \
            *(void **)&next = dlsym(RTLD_NEXT, #name);                                             \
        }                                                                                          \
        note(#name);                                                                               \
        if (fails(#name)) {                                                                        \
            before;                                                                                \
            return failure;                                                                        \
        }                                                                                          \
        type result = next(__VA_ARGS__);                                                           \
        end_call();                                                                                \
        return result;                                                                             \
    }
/* One that may do less than it was asked for. */
#define PARTIAL(type, name, parameters, ...)                                                       \
    CALL(type, name, fault.error == 0 ? next(__VA_ARGS__) : -1, size = size > 0, parameters,       \
         __VA_ARGS__)

PARTIAL(ssize_t, read, (int file, void *to, size_t size), file, to, size)
PARTIAL(ssize_t, pread, (int file, void *to, size_t size, off_t at), file, to, size, at)
PARTIAL(ssize_t, write, (int file, const void *from, size_t size), file, from, size)
CALL(int, open, -1, , (const char *path, int flags, mode_t mode), path, flags, mode)
CALL(int, openat, -1, , (int folder, const char *path, int flags, mode_t mode), folder, path, flags,
     mode)
CALL(int, close, -1, next(file), (int file), file)
CALL(int, fsync, -1, , (int file), file)
CALL(int, rename, -1, , (const char *from, const char *to), from, to)
CALL(int, renameat2, -1, ,
     (int folder, const char *from, int other, const char *to, unsigned flags), folder, from, other,
     to, flags)
CALL(int, unlink, -1, , (const char *path), path)
CALL(int, mkdir, -1, , (const char *path, mode_t mode), path, mode)
CALL(int, stat, -1, , (const char *path, struct stat *to), path, to)
CALL(int, lstat, -1, , (const char *path, struct stat *to), path, to)
CALL(int, fstat, -1, , (int file, struct stat *to), file, to)
CALL(int, fchmod, -1, , (int file, mode_t mode), file, mode)
CALL(int, fchown, -1, , (int file, uid_t owner, gid_t group), file, owner, group)
CALL(int, poll, -1, , (struct pollfd * files, nfds_t count, int timeout), files, count, timeout)
CALL(void *, mmap, MAP_FAILED, ,
     (void *at, size_t size, int protection, int flags, int file, off_t offset), at, size,
     protection, flags, file, offset)
CALL(DIR *, fdopendir, NULL, , (int folder), folder)
CALL(struct dirent *, readdir, NULL, , (DIR * folder), folder)
CALL(char *, realpath, NULL, , (const char *path, char *to), path, to)
CALL(ssize_t, readlink, -1, , (const char *path, char *to, size_t size), path, to, size)
CALL(FILE *, fopen, NULL, , (const char *path, const char *mode), path, mode)
CALL(size_t, fread, 0, , (void *to, size_t size, size_t count, FILE *file), to, size, count, file)
CALL(void *, dlopen, NULL, , (const char *path, int flags), path, flags)
CALL(int, pthread_create, fault.error, ,
     (pthread_t * thread, const pthread_attr_t *how, void *(*start)(void *), void *with), thread,
     how, start, with)

int mkostemp(char *name, int flags) {
    int (*next)(char *, int);
    *(void **)&next = dlsym(RTLD_NEXT, "mkostemp");
    note("mkostemp");
    const int file = fails("mkostemp") ? -1 : next(name, flags);
    if (file >= 0 && made_count < 8) {
        snprintf(made[made_count], sizeof made[0], "%s", name);
        snprintf(kept[made_count++], sizeof kept[0], "%s.kept", name);
    }
    end_call();
    return file;
}
