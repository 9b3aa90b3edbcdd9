/* Each allocation fails in turn, in a process that has just started and in one that has
 * converted before: a call that fails says so, releases what it took, and the next one is
 * as if nothing had been. */
#include "library.h"

#ifdef FAILING_ALLOCATIONS
#include <errno.h>
#include <stdatomic.h>
#include <sys/wait.h>
#include <unistd.h>

extern void *__libc_malloc(size_t);
extern void *__libc_calloc(size_t, size_t);
extern void *__libc_realloc(void *, size_t);
extern void *__libc_memalign(size_t, size_t);
extern void __libc_free(void *);

static atomic_int armed;
static atomic_long until_failure; /* allocations that succeed */
static atomic_long held;          /* blocks */

static int granted(void) {
    if (atomic_load(&armed) && atomic_fetch_sub(&until_failure, 1) == 0) {
        errno = ENOMEM;
        return 0;
    }
    return 1;
}
static void *counted(void *block) {
    atomic_fetch_add(&held, block != NULL);
    return block;
}
void *malloc(size_t size) {
    return granted() ? counted(__libc_malloc(size)) : NULL;
}
void *calloc(size_t count, size_t size) {
    return granted() ? counted(__libc_calloc(count, size)) : NULL;
}
void *realloc(void *block, size_t size) {
    if (!granted()) {
        return NULL;
    }
    atomic_fetch_sub(&held, block != NULL);
    return counted(__libc_realloc(block, size));
}
void *aligned_alloc(size_t alignment, size_t size) {
    return granted() ? counted(__libc_memalign(alignment, size)) : NULL;
}
void free(void *block) {
    atomic_fetch_sub(&held, block != NULL);
    __libc_free(block);
}

/* What a call may return: its code without failures, or want of memory. */
static int want;
static int is(aceconv_code code, aceconv_code expected) {
    want = want || code == ACECONV_NO_MEMORY;
    return code == expected || code == ACECONV_NO_MEMORY;
}

/* What a process does first, or all of it. */
static void scenario(int all) {
    aceconv_converter *converter = NULL;
    const aceconv_code opening = aceconv_open(NULL, &converter);
    CHECK(is(opening, ACECONV_OK));
    if (opening != ACECONV_OK) {
        CHECK(converter == NULL || aceconv_last_error(converter)->code == ACECONV_NO_MEMORY);
        aceconv_close(converter);
        return;
    }
    const aceconv_input um = text(UM_ENTRY), base = text(BASE_ENTRY), lossy = text(LOSSY_ENTRY);
    const aceconv_result *result = NULL;
    for (int i = 0; i < 2; ++i) { /* again, as if nothing had been */
        const aceconv_code code = aceconv_encode(converter, &um, &result);
        CHECK(is(code, ACECONV_OK) && (code != ACECONV_OK || result->length == 44));
        CHECK((code == ACECONV_OK) == (result != NULL));
    }
    if (!all) {
        aceconv_close(converter);
        return;
    }
    char bytes[64];
    aceconv_input encoding = text("");
    if (result != NULL) {
        memcpy(bytes, result->bytes, result->length);
        encoding.data = bytes;
        encoding.length = result->length;
        encoding.schema = ACECONV_SCHEMA_UM;
        CHECK(is(aceconv_decode(converter, &encoding, ACECONV_FORMAT_JSON, &result), ACECONV_OK));
        CHECK(is(aceconv_decode(converter, &encoding, ACECONV_FORMAT_TEXT, &result), ACECONV_OK));
        CHECK(is(aceconv_inspect(converter, &encoding, &result), ACECONV_OK));
        CHECK(is(aceconv_diff(converter, &base, &encoding, &result), ACECONV_OK));
    }
    CHECK(is(aceconv_convert(converter, &lossy, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_JSON, &result),
             ACECONV_OK));
    CHECK(result == NULL || result->change_count == 1);
    CHECK(is(aceconv_check(converter, &lossy, &result), ACECONV_OK));
    struct tape tape = {.input = UM_ENTRY "\n" LOSSY_ENTRY "\n"};
    tape.length = strlen(tape.input);
    aceconv_stream stream = stream_over(&tape, ACECONV_CONVERT);
    stream.to = ACECONV_SCHEMA_BASE;
    stream.format = ACECONV_FORMAT_NDJSON;
    CHECK(is(aceconv_run(converter, &stream, NULL), ACECONV_OK));
    aceconv_close(converter);
}

/* The scenario with its first, second, ... allocation failing, until none does; how many
 * there were. */
static long sweep(int fresh) {
    for (long number = 0;; ++number) {
        const pid_t child = fresh ? fork() : 0;
        int failed = 0;
        if (child == 0) {
            const long before = atomic_load(&held);
            atomic_store(&until_failure, number);
            want = 0;
            atomic_store(&armed, 1);
            scenario(!fresh);
            atomic_store(&armed, 0);
            failed = atomic_load(&until_failure) < 0;
            if (fresh) {
                _exit(failed);
            }
            CHECK(atomic_load(&held) == before && want <= failed);
        } else {
            int status = 0;
            CHECK(waitpid(child, &status, 0) == child && WIFEXITED(status));
            failed = WEXITSTATUS(status);
        }
        if (!failed) {
            return number;
        }
    }
}

void test_memory(void) {
    CHECK(sweep(1) > 300);
    scenario(1);
    CHECK(sweep(0) > 1000);
}

#else /* sanitizers bring an allocator of their own */
void test_memory(void) {
    fputs("built without failing allocations\n", stderr);
    exit(2);
}
#endif
