/* To be preloaded: every read gives one byte, as from a writer who is slower than the reader. */
#include <sys/syscall.h>
#include <unistd.h>

ssize_t read(int file, void *buffer, size_t size) {
    return syscall(SYS_read, file, buffer, size != 0 ? 1 : 0);
}
