/* What the parts of the test of libaceconv share. */
#ifndef TESTS_CONVERTER_LIBRARY_H
#define TESTS_CONVERTER_LIBRARY_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "aceconv/converter.h"

#define CHECK(holds)                                                                               \
    ((holds) ? (void)0 : (fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #holds), abort()))

static inline int same(const char *a, const char *b) {
    return a == b || (a != NULL && b != NULL && strcmp(a, b) == 0);
}

static inline aceconv_input text(const char *data) {
    aceconv_input input = {.size = sizeof input, .data = data, .length = strlen(data)};
    return input;
}

/* Two entries of the same meaning, and one that the base schema cannot say in full. */
#define UM_ENTRY                                                                                   \
    "{\"sequence-number\":10,\"permit\":{\"protocol\":\"tcp\",\"source\":{\"any\":{}},"            \
    "\"destination\":{\"host\":\"192.0.2.1\"}}}"
#define BASE_ENTRY                                                                                 \
    "{\"sequence-number\":10,\"grant\":\"permit\",\"protocol\":6,"                                 \
    "\"destination-network\":{\"destination-address\":\"192.0.2.1\"}}"
#define LOSSY_ENTRY                                                                                \
    "{\"sequence-number\":20,\"permit\":{\"protocol\":\"ipv4\",\"source\":{\"any\":{}},"           \
    "\"destination\":{\"any\":{}},\"udf-entries\":{\"udf\":[{\"udf-name\":\"a\","                  \
    "\"udf-value\":\"1\",\"udf-mask\":\"1\"}]}}}"

/* A stream over memory, with what came of it. */
struct tape {
    const char *input;
    size_t length, at;
    size_t piece; /* at most so many bytes are read at once; 0: any number */
    int pauses;   /* every second read says that nothing is there yet */
    char output[1 << 16];
    size_t written;
    size_t entries, losses, faults;
    aceconv_code last_fault;
    uint64_t last_line;
    const char *stop_in; /* the callback that ends the run: "read", "write", ... */
};

aceconv_stream stream_over(struct tape *tape, aceconv_verb verb);

void test_calls(const char *plugin);
void test_streams(void);
void test_threads(void);
void test_memory(void);

#endif
