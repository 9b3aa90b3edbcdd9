/* Every function of aceconv/converter.h, as a C program calls it. It says nothing unless
 * something is wrong: the library has no output either. */
#include "library.h"

static aceconv_converter *opened(const aceconv_options *options) {
    aceconv_converter *converter = NULL;
    CHECK(aceconv_open(options, &converter) == ACECONV_OK && converter != NULL);
    CHECK(aceconv_last_error(converter) == NULL);
    return converter;
}

static void refused_opening(const aceconv_options *options, aceconv_code code, const char *why) {
    aceconv_converter *converter = NULL;
    CHECK(aceconv_open(options, &converter) == code && converter != NULL);
    CHECK(strstr(aceconv_last_error(converter)->text, why) != NULL);
    const aceconv_input entry = text(UM_ENTRY);
    const aceconv_result *result = NULL;
    CHECK(aceconv_encode(converter, &entry, &result) == ACECONV_BAD_CALL && result == NULL);
    aceconv_close(converter);
}

static void test_opening(const char *plugin) {
    const size_t size = sizeof(aceconv_options);
    const struct {
        aceconv_options options;
        aceconv_code code;
        const char *why;
    } cases[] = {
        {{.size = 3}, ACECONV_BAD_CALL, "size"},
        {{.size = size + 1}, ACECONV_BAD_CALL, "size"},
        {{.size = size, .schema = (aceconv_schema)7}, ACECONV_BAD_CALL, "no such schema"},
        {{.size = size, .backend = (aceconv_backend)7}, ACECONV_BAD_CALL, "no such backend"},
        {{.size = size, .modules = "/nowhere"}, ACECONV_UNAVAILABLE, "/nowhere"},
        {{.size = size, .plugin = "/nowhere.so"}, ACECONV_UNAVAILABLE, "/nowhere.so"},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        refused_opening(&cases[i].options, cases[i].code, cases[i].why);
    }
    CHECK(aceconv_open(NULL, NULL) == ACECONV_BAD_CALL);
    aceconv_close(NULL);
    const aceconv_options ways[] = {
        {.size = size},
        {.size = offsetof(aceconv_options, plugin)}, /* of an earlier version */
        {.size = size, .backend = ACECONV_BACKEND_VALIDATING},
        {.size = size, .plugin = plugin},
    };
    for (size_t i = 0; i < sizeof ways / sizeof ways[0]; ++i) {
        aceconv_converter *converter = opened(&ways[i]);
        const aceconv_input entry = text(UM_ENTRY);
        const aceconv_result *result = NULL;
        CHECK(aceconv_encode(converter, &entry, &result) == ACECONV_OK && result->length == 44);
        aceconv_close(converter);
    }
    CHECK(same(aceconv_version(), ACECONV_VERSION));
    for (int code = ACECONV_OK; code <= ACECONV_INTERNAL + 1; ++code) {
        CHECK(strlen(aceconv_code_text((aceconv_code)code)) > 4);
    }
}

static void test_one_entry(void) {
    aceconv_converter *converter = opened(NULL);
    const aceconv_result *result = NULL;
    aceconv_input entry = text(UM_ENTRY);
    entry.list = "X";
    CHECK(aceconv_encode(converter, &entry, &result) == ACECONV_OK);
    CHECK(same(result->list, "X") && result->sequence == 10 && result->line == 1 &&
          result->schema == ACECONV_SCHEMA_UM && result->change_count == 0);
    char bytes[64];
    CHECK(result->length < sizeof bytes);
    memcpy(bytes, result->bytes, result->length);
    aceconv_input encoding = text("");
    encoding.data = bytes;
    encoding.length = result->length;

    /* Without a label nothing tells list, number and schema. */
    CHECK(aceconv_decode(converter, &encoding, ACECONV_FORMAT_JSON, &result) == ACECONV_OK &&
          result->list == NULL && result->sequence == 0 && result->schema == ACECONV_SCHEMA_ANY);
    encoding.schema = ACECONV_SCHEMA_UM;
    encoding.sequence = 10;
    CHECK(aceconv_decode(converter, &encoding, ACECONV_FORMAT_JSON, &result) == ACECONV_OK &&
          same((const char *)result->bytes, UM_ENTRY));
    CHECK(aceconv_decode(converter, &encoding, ACECONV_FORMAT_XML, &result) == ACECONV_OK &&
          strstr((const char *)result->bytes, "<host>192.0.2.1</host>") != NULL);
    CHECK(aceconv_decode(converter, &encoding, ACECONV_FORMAT_TEXT, &result) == ACECONV_OK &&
          same((const char *)result->bytes, "10 permit tcp any 192.0.2.1"));
    CHECK(aceconv_convert(converter, &encoding, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_ANY, &result) ==
              ACECONV_OK &&
          same((const char *)result->bytes, BASE_ENTRY) && result->schema == ACECONV_SCHEMA_BASE);
    CHECK(aceconv_inspect(converter, &encoding, &result) == ACECONV_OK && result->field_count == 3);
    const aceconv_field *field = &result->fields[1];
    CHECK(same(field->name, "protocol") && same(field->bits, "1") && field->offset == 18 &&
          field->width == 2 && field->value.kind == ACECONV_VALUE_KEYWORD &&
          field->value.number == 6 && same(field->value.text, "tcp") &&
          same(field->value.shown, "6 (tcp)") && same(field->note, ""));
    field = &result->fields[2];
    CHECK(field->value.kind == ACECONV_VALUE_ADDRESS && field->value.number == 0xC0000201 &&
          same(field->value.text, "192.0.2.1"));
    CHECK(strstr((const char *)result->bytes, "\"name\":\"daddr\"") != NULL &&
          same(result->words, "10 permit tcp any 192.0.2.1"));
    CHECK(aceconv_check(converter, &entry, &result) == ACECONV_OK && result->change_count == 0 &&
          result->length == encoding.length && memcmp(result->bytes, bytes, result->length) == 0);

    const aceconv_input base = text(BASE_ENTRY);
    CHECK(aceconv_diff(converter, &base, &encoding, &result) == ACECONV_OK &&
          result->change_count == 0 && result->length == 0);
    const aceconv_input lossy = text(LOSSY_ENTRY);
    CHECK(aceconv_diff(converter, &base, &lossy, &result) == ACECONV_OK &&
          result->change_count == 3 && same(result->changes[0].leaf, "protocol") &&
          result->changes[0].after.number == 512);
    CHECK(aceconv_convert(converter, &lossy, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_JSON, &result) ==
              ACECONV_OK &&
          result->change_count == 1 &&
          same(result->words, "20 permit ip any any udf \"a\" 0x1/0x1"));
    const aceconv_change *loss = &result->changes[0];
    CHECK(same(loss->field, "UDF") && loss->before.kind == ACECONV_VALUE_USER_FIELDS &&
          loss->after.kind == ACECONV_VALUE_ABSENT && loss->after.shown == NULL && loss->widens &&
          strlen(loss->reason) > 4);

    /* User-defined fields that the base schema keeps from an earlier encoding. */
    CHECK(aceconv_encode(converter, &lossy, &result) == ACECONV_OK);
    char stored[128];
    CHECK(result->length < sizeof stored);
    memcpy(stored, result->bytes, result->length);
    aceconv_input kept = base;
    kept.stored = stored;
    kept.stored_length = result->length;
    CHECK(aceconv_encode(converter, &kept, &result) == ACECONV_OK && result->length > 44);
    aceconv_close(converter);
}

/* A good entry, given in a way that is refused. */
#define GOOD_BUT(...)                                                                              \
    { .size = sizeof(aceconv_input), .data = UM_ENTRY, .length = strlen(UM_ENTRY), __VA_ARGS__ }

static void test_refusals(void) {
    const aceconv_options no_losses = {.size = sizeof no_losses, .no_losses = 1};
    aceconv_converter *converter = opened(&no_losses);
    const aceconv_result *result = NULL;
    const struct {
        aceconv_input input;
        aceconv_code code;
        uint64_t line;
        const char *path, *why;
    } cases[] = {
        {text("{\"permit\":\n{\"protocol\":\"tpc\"}}"), ACECONV_BAD_DATA, 2,
         "/aceconv-um:acls/acl/entry/permit/protocol", "did you mean tcp?"},
        {text(" \n"), ACECONV_BAD_DATA, 0, "", "empty"},
        {text(UM_ENTRY "\n" UM_ENTRY), ACECONV_BAD_DATA, 2, "", "more than one"},
        {text("{\"aceconv-base:acls\":{}}"), ACECONV_BAD_DATA, 0, "", "without an entry"},
        {text("{\"remark\":\"x\"}"), ACECONV_SCHEMA_UNKNOWN, 0, "", "schema"},
        {text("?"), ACECONV_BAD_INPUT, 0, "", "found '?'"},
        {{.size = 1}, ACECONV_BAD_CALL, 0, "", "size"},
        {GOOD_BUT(.list = ""), ACECONV_BAD_CALL, 1, "", "empty"},
        {GOOD_BUT(.format = ACECONV_FORMAT_TEXT), ACECONV_BAD_CALL, 0, "", "cannot be read"},
        {GOOD_BUT(.stored = "", .stored_length = 0), ACECONV_BAD_CALL, 1, "", "no effect"},
        {GOOD_BUT(.schema = ACECONV_SCHEMA_BASE), ACECONV_BAD_DATA, 1,
         "/aceconv-base:acls/acl/entry[sequence-number='10']/permit", ""},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        result = (const aceconv_result *)&cases; /* anything but null */
        CHECK(aceconv_encode(converter, &cases[i].input, &result) == cases[i].code);
        const aceconv_error *error = aceconv_last_error(converter);
        CHECK(result == NULL && error != NULL && error->code == cases[i].code);
        CHECK(error->line == cases[i].line && same(error->path, cases[i].path));
        CHECK(strstr(error->text, cases[i].why) != NULL);
    }
    const aceconv_input entry = text(UM_ENTRY);
    CHECK(aceconv_decode(converter, &entry, ACECONV_FORMAT_JSON, &result) == ACECONV_BAD_INPUT);
    CHECK(aceconv_convert(converter, &entry, ACECONV_SCHEMA_ANY, ACECONV_FORMAT_JSON, &result) ==
          ACECONV_BAD_CALL);
    CHECK(aceconv_convert(converter, &entry, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_CBOR, &result) ==
          ACECONV_BAD_CALL);
    CHECK(aceconv_encode(converter, &entry, NULL) == ACECONV_BAD_CALL);
    CHECK(aceconv_encode(NULL, &entry, &result) == ACECONV_BAD_CALL);
    CHECK(aceconv_encode(converter, &entry, &result) == ACECONV_OK &&
          aceconv_last_error(converter) == NULL);
    const aceconv_input lossy = text(LOSSY_ENTRY);
    CHECK(aceconv_convert(converter, &lossy, ACECONV_SCHEMA_BASE, ACECONV_FORMAT_JSON, &result) ==
              ACECONV_OK &&
          result->change_count == 0); /* no_losses */
    const aceconv_input bad = text("{\"permit\":{\"protocol\":\"tpc\"},\"sequence-number\":7}");
    CHECK(aceconv_diff(converter, &entry, &bad, &result) == ACECONV_BAD_DATA &&
          aceconv_last_error(converter)->sequence == 7);
    aceconv_close(converter);
}

void test_calls(const char *plugin) {
    test_opening(plugin);
    test_one_entry();
    test_refusals();
}

int main(int argc, char **argv) {
    const char *part = argc > 1 ? argv[1] : "";
    if (same(part, "calls") && argc > 2) {
        test_calls(argv[2]);
    } else if (same(part, "streams")) {
        test_streams();
    } else if (same(part, "Threads")) {
        test_threads();
    } else if (same(part, "memory")) {
        test_memory();
    } else {
        fputs("usage: library_test calls PLUGIN | streams | Threads | memory\n", stderr);
        return 2;
    }
    return 0;
}
