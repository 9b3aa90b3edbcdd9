/* Preloaded: makes calls fail as FAIL has it, "NAME FROM COUNT": of the calls of that
   name the FROMth, counted from 0, and the COUNT - 1 behind it; "NAME FROM 0" sends a
   signal behind it instead. Writes the names of calls that tell of files to CALLS. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

extern void *__libc_malloc(size_t);
extern void *__libc_calloc(size_t, size_t);
extern void *__libc_realloc(void *, size_t);

static struct {
    char name[16];
    unsigned from, count;
    atomic_uint met;
} fault;

__attribute__((constructor)) static void read_fault(void) {
    const char *text = getenv("FAIL");
    if (text != NULL) {
        sscanf(text, "%15s %u %u", fault.name, &fault.from, &fault.count);
    }
}

static int fails(const char *name) {
    if (strcmp(name, fault.name) != 0) {
        return 0;
    }
    const unsigned number = atomic_fetch_add(&fault.met, 1);
    if (number == fault.from && fault.count == 0) {
        raise(SIGTERM);
    }
    return number >= fault.from && number - fault.from < fault.count;
}

static void note(const char *name) {
    const char *calls = getenv("CALLS");
    const int file = calls == NULL ? -1 : open(calls, O_WRONLY | O_APPEND | O_CREAT, 0600);
    if (file >= 0) {
        dprintf(file, "%s\n", name);
        close(file);
    }
}

void *malloc(size_t size) {
    return fails("malloc") ? (errno = ENOMEM, NULL) : __libc_malloc(size);
}

void *calloc(size_t count, size_t size) {
    return fails("malloc") ? (errno = ENOMEM, NULL) : __libc_calloc(count, size);
}

void *realloc(void *block, size_t size) {
    return fails("malloc") ? (errno = ENOMEM, NULL) : __libc_realloc(block, size);
}

int fsync(int file) {
    int (*next)(int);
    *(void **)&next = dlsym(RTLD_NEXT, "fsync");
    note("fsync");
    return fails("fsync") ? (errno = EIO, -1) : next(file);
}

int rename(const char *from, const char *to) {
    int (*next)(const char *, const char *);
    *(void **)&next = dlsym(RTLD_NEXT, "rename");
    note("rename");
    return fails("rename") ? (errno = EIO, -1) : next(from, to);
}

int mkostemp(char *name, int flags) {
    int (*next)(char *, int);
    *(void **)&next = dlsym(RTLD_NEXT, "mkostemp");
    const int file = next(name, flags);
    if (fails("mkostemp")) {
        close(file);
        unlink(name);
        errno = EIO;
        return -1;
    }
    return file;
}
