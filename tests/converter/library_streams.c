/* Streams between callbacks, and several converters at once. */
#include <pthread.h>

#include "library.h"

static int stops(const struct tape *tape, const char *callback) {
    return same(tape->stop_in, callback);
}

static ptrdiff_t on_read(void *context, void *buffer, size_t size, int may_wait) {
    struct tape *tape = context;
    if (stops(tape, "read")) {
        return -1;
    }
    if (tape->pauses && !may_wait) {
        return ACECONV_READ_LATER;
    }
    size_t count = tape->length - tape->at;
    count = count > size ? size : count;
    count = tape->piece != 0 && count > tape->piece ? tape->piece : count;
    memcpy(buffer, tape->input + tape->at, count);
    tape->at += count;
    return (ptrdiff_t)count;
}
static int on_write(void *context, const void *bytes, size_t length) {
    struct tape *tape = context;
    CHECK(length != 0 && tape->written + length < sizeof tape->output);
    memcpy(tape->output + tape->written, bytes, length);
    tape->written += length;
    tape->output[tape->written] = '\0';
    return stops(tape, "write");
}
static int on_entry(void *context, const aceconv_result *entry) {
    struct tape *tape = context;
    ++tape->entries;
    CHECK(entry->bytes != NULL && entry->ordinal != 0);
    return stops(tape, "entry");
}
static int on_loss(void *context, const aceconv_result *entry, const aceconv_change *loss) {
    struct tape *tape = context;
    ++tape->losses;
    CHECK(entry->sequence == 20 && loss->widens);
    return stops(tape, "loss");
}
static int on_fault(void *context, const aceconv_error *fault) {
    struct tape *tape = context;
    ++tape->faults;
    tape->last_fault = fault->code;
    tape->last_line = fault->line;
    return stops(tape, "fault");
}

aceconv_stream stream_over(struct tape *tape, aceconv_verb verb) {
    const aceconv_stream stream = {.size = sizeof stream,
                                   .verb = verb,
                                   .context = tape,
                                   .read = on_read,
                                   .write = on_write,
                                   .entry = on_entry,
                                   .loss = on_loss,
                                   .fault = on_fault};
    return stream;
}

#define BAD_ENTRY "{\"permit\":{\"protocol\":\"tpc\"},\"sequence-number\":15}"
#define LINES UM_ENTRY "\n" BAD_ENTRY "\n" LOSSY_ENTRY "\n"
#define LIST "{\"acl\":\"X\",\"entry\":"

static aceconv_converter *converter_of(void) {
    aceconv_converter *converter = NULL;
    CHECK(aceconv_open(NULL, &converter) == ACECONV_OK);
    return converter;
}

static struct tape over(const char *input) {
    struct tape tape = {.input = input, .length = strlen(input)};
    return tape;
}

static void test_verbs(aceconv_converter *converter) {
    const struct {
        aceconv_verb verb;
        aceconv_schema to;
        aceconv_format format;
        const char *start; /* of the output */
        uint64_t losses;
    } cases[] = {
        {ACECONV_ENCODE, ACECONV_SCHEMA_ANY, ACECONV_FORMAT_ANY, "\x83\xF6\x0A\x62um", 0},
        {ACECONV_ENCODE, ACECONV_SCHEMA_ANY, ACECONV_FORMAT_BARE_CBOR, "\x83\x73ipv4", 0},
        {ACECONV_CONVERT, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_NDJSON, BASE_ENTRY "\n{", 1},
        {ACECONV_INSPECT, ACECONV_SCHEMA_ANY, ACECONV_FORMAT_ANY, "{\"acl\":null", 0},
        {ACECONV_CHECK, ACECONV_SCHEMA_ANY, ACECONV_FORMAT_ANY, "", 0},
        {ACECONV_READ, ACECONV_SCHEMA_ANY, ACECONV_FORMAT_ANY, "", 0},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        for (int way = 0; way < 3; ++way) {
            struct tape tape = over(LINES);
            tape.piece = way == 0 ? 0 : 7;
            tape.pauses = way == 2;
            aceconv_stream stream = stream_over(&tape, cases[i].verb);
            stream.to = cases[i].to;
            stream.format = cases[i].format;
            stream.jobs = way == 2 ? 3 : 0;
            aceconv_tally tally;
            CHECK(aceconv_run(converter, &stream, &tally) == ACECONV_OK);
            CHECK(tally.entries == 3 && tally.faults == 1 && tally.losses == cases[i].losses);
            CHECK(tape.entries == 2 && tape.faults == 1 && tape.losses == cases[i].losses);
            CHECK(tape.last_fault == ACECONV_BAD_DATA && tape.last_line == 2);
            CHECK(strncmp(tape.output, cases[i].start, strlen(cases[i].start)) == 0);
            CHECK((tape.written == 0) == (cases[i].start[0] == '\0'));
        }
    }
}

/* A document comes back through encodings. */
static void test_there_and_back(aceconv_converter *converter) {
    struct tape there = over(LIST UM_ENTRY "}\n" LIST LOSSY_ENTRY "}\n");
    aceconv_stream stream = stream_over(&there, ACECONV_ENCODE);
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_OK);
    struct tape back = {.input = there.output, .length = there.written};
    stream = stream_over(&back, ACECONV_DECODE);
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_OK && back.entries == 2);
    CHECK(same(back.output,
               "{\"aceconv-um:acls\":{\"acl\":[\n{\"name\":\"X\",\"entry\":[\n" UM_ENTRY
               ",\n" LOSSY_ENTRY "\n]}\n]}}\n"));
    back.at = back.written = 0;
    stream.format = ACECONV_FORMAT_TEXT;
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_OK &&
          strstr(back.output, "10 permit tcp any 192.0.2.1\n") != NULL);
}

static void test_endings(aceconv_converter *converter) {
    static const char *const callbacks[] = {"read", "write", "entry", "loss", "fault"};
    for (size_t i = 0; i < sizeof callbacks / sizeof callbacks[0]; ++i) {
        struct tape tape = over(LINES);
        tape.stop_in = callbacks[i];
        aceconv_stream stream = stream_over(&tape, ACECONV_CONVERT);
        stream.to = ACECONV_SCHEMA_BASE;
        stream.format = ACECONV_FORMAT_NDJSON;
        CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_CANCELLED);
        CHECK(aceconv_last_error(converter)->code == ACECONV_CANCELLED);
    }
    struct tape tape = over(LINES);
    aceconv_stream stream = stream_over(&tape, ACECONV_ENCODE);
    stream.fault = NULL;
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_BAD_DATA && tape.entries == 1);
    CHECK(aceconv_last_error(converter)->line == 2 &&
          aceconv_last_error(converter)->sequence == 15);
    const struct {
        const char *input;
        aceconv_verb verb;
        unsigned jobs;
        aceconv_code code;
    } cases[] = {
        {"{\"aceconv-um:acls\":{\"acl\":[{\"name\":\"X\",\"entry\":[" UM_ENTRY ",", ACECONV_ENCODE,
         1, ACECONV_BAD_INPUT},
        {"?", ACECONV_ENCODE, 1, ACECONV_BAD_INPUT},
        {"", ACECONV_ENCODE, 1, ACECONV_BAD_INPUT},
        {"{\"remark\":\"x\"}\n", ACECONV_ENCODE, 1, ACECONV_SCHEMA_UNKNOWN},
        {UM_ENTRY, (aceconv_verb)99, 1, ACECONV_BAD_CALL},
        {UM_ENTRY, ACECONV_ENCODE, 257, ACECONV_BAD_CALL},
        {UM_ENTRY, ACECONV_CONVERT, 1, ACECONV_BAD_CALL}, /* to no schema */
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        tape = over(cases[i].input);
        stream = stream_over(&tape, cases[i].verb);
        stream.jobs = cases[i].jobs;
        CHECK(aceconv_run(converter, &stream, NULL) == cases[i].code);
        CHECK(aceconv_last_error(converter)->code == cases[i].code);
    }
    stream = stream_over(&tape, ACECONV_ENCODE);
    stream.read = NULL;
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_BAD_CALL);
    CHECK(aceconv_run(NULL, &stream, NULL) == ACECONV_BAD_CALL);
    CHECK(aceconv_run(converter, NULL, NULL) == ACECONV_BAD_CALL);
}

static aceconv_converter *running;
static int calls_itself(void *context, const aceconv_result *entry) {
    (void)context;
    (void)entry;
    const aceconv_input input = text(UM_ENTRY);
    const aceconv_result *result = NULL;
    CHECK(aceconv_encode(running, &input, &result) == ACECONV_BAD_CALL && result == NULL);
    return 0;
}

void test_streams(void) {
    aceconv_converter *converter = converter_of();
    test_verbs(converter);
    test_there_and_back(converter);
    test_endings(converter);
    struct tape tape = over(UM_ENTRY);
    aceconv_stream stream = stream_over(&tape, ACECONV_ENCODE);
    stream.entry = calls_itself;
    running = converter;
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_OK);
    aceconv_close(converter);
}

/* ---- Threads ---------------------------------------------------------------- */

enum { threads = 8, rounds = 10, many = 2400 };

/* Lines enough for the threads of one run to start. */
static char *many_lines(void) {
    char *lines = malloc(many * (sizeof UM_ENTRY + 1));
    CHECK(lines != NULL);
    for (size_t i = 0; i < many; ++i) {
        memcpy(lines + i * sizeof UM_ENTRY, UM_ENTRY "\n", sizeof UM_ENTRY + 1);
    }
    return lines;
}

static void *one_of_many(void *lines) {
    for (int round = 0; round < rounds; ++round) {
        aceconv_converter *converter = converter_of();
        const aceconv_result *result = NULL;
        const aceconv_input um = text(UM_ENTRY), base = text(BASE_ENTRY), bad = text(BAD_ENTRY);
        CHECK(aceconv_convert(converter, &um, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_JSON, &result) ==
                  ACECONV_OK &&
              same((const char *)result->bytes, BASE_ENTRY));
        CHECK(aceconv_encode(converter, &bad, &result) == ACECONV_BAD_DATA);
        CHECK(strstr(aceconv_last_error(converter)->text, "tpc") != NULL);
        CHECK(aceconv_diff(converter, &base, &um, &result) == ACECONV_OK &&
              result->change_count == 0);
        aceconv_close(converter);
    }
    aceconv_converter *converter = converter_of();
    struct tape tape = over(lines);
    aceconv_stream stream = stream_over(&tape, ACECONV_ENCODE);
    stream.write = NULL;
    stream.jobs = 3;
    CHECK(aceconv_run(converter, &stream, NULL) == ACECONV_OK && tape.entries == many);
    aceconv_close(converter);
    return NULL;
}

void test_threads(void) {
    char *lines = many_lines();
    pthread_t started[threads];
    for (int i = 0; i < threads; ++i) {
        CHECK(pthread_create(&started[i], NULL, one_of_many, lines) == 0);
    }
    for (int i = 0; i < threads; ++i) {
        CHECK(pthread_join(started[i], NULL) == 0);
    }
    free(lines);
}
