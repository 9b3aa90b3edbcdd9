/* The converter as a library: access-list entries between YANG data of either schema and
 * encoded records, inside other programs.
 *
 *  (1) A converter serves one thread at a time; any number may be open at once, and
 *      nothing that is done with one shows in another. Opening costs little once the
 *      process has opened one.
 *  (2) Every function that can fail returns an aceconv_code, ACECONV_OK on success, and
 *      aceconv_last_error tells the rest until the converter's next call. A failed call
 *      leaves the converter usable and gives no result.
 *  (3) Results, their texts and their arrays belong to the converter and are valid until its
 *      next call, in callbacks until they return. Texts are UTF-8 and end with NUL; bytes
 *      have a length, and a NUL behind them that does not count.
 *  (4) Structs that callers fill in start with their size, which tells the version that
 *      they were built with. Members that are zero say nothing special.
 *  (5) An input is what the command takes: an entry or a document in JSON (RFC 7951) or
 *      XML, entries one a line, or encodings with or without labels. Calls for one entry
 *      refuse inputs that hold none or more than one.
 *  (6) Nothing is written anywhere and no signal is handled. Threads run only inside
 *      aceconv_run, with signals blocked. No exception leaves the library, and none may
 *      leave a callback.
 *  (7) Want of memory is ACECONV_NO_MEMORY like any other code, with one exception: XML,
 *      ACECONV_BACKEND_VALIDATING, YANG modules other than those that the library was built
 *      with, and the messages about bad entries are libyang's, which may end the process then.
 *      Its first use also has libyang keep its messages to itself, in the whole process.
 *  (8) Entries of a stream that wait to be told their list or schema lie in a file without
 *      a name in TMPDIR.
 */
#ifndef ACECONV_CONVERTER_H
#define ACECONV_CONVERTER_H

#include <stddef.h>
#include <stdint.h>

#include "aceconv/linkage.h"
#include "aceconv/version.h"

#ifdef __cplusplus
extern "C" {
#define ACECONV_ENUM : unsigned /* any number may come from C */
#else
#define ACECONV_ENUM
#endif

typedef struct aceconv_converter aceconv_converter;

/* ---- Codes and errors ----------------------------------------------------- */

typedef enum aceconv_code ACECONV_ENUM {
    ACECONV_OK = 0,
    ACECONV_BAD_DATA = 1,       /* an entry that cannot be converted; others may follow */
    ACECONV_BAD_INPUT = 2,      /* an input whose rest cannot be read */
    ACECONV_SCHEMA_UNKNOWN = 3, /* it depends on a schema that nothing tells */
    ACECONV_BAD_CALL = 4,       /* arguments that cannot be meant */
    ACECONV_UNAVAILABLE = 5,    /* the plug-in, the modules or a file cannot be used */
    ACECONV_CANCELLED = 6,      /* a callback ended the run */
    ACECONV_NO_MEMORY = 7,
    ACECONV_INTERNAL = 8 /* a fault of the library */
} aceconv_code;

/* What went wrong, and where. */
typedef struct aceconv_error {
    aceconv_code code;
    const char *text;  /* what was found and what was expected; never null */
    const char *path;  /* of the node at fault, "" for none */
    const char *list;  /* the access list, null where it is not known */
    uint32_t sequence; /* number of the entry, 0 where it is not known */
    uint64_t line;     /* from 1, 0 where there are no lines */
    uint64_t ordinal;  /* which entry of the input, from 1; 0 for none */
} aceconv_error;

/* Why the converter's last call failed; null when it did not. */
ACECONV_EXPORT const aceconv_error *
aceconv_last_error(const aceconv_converter *converter) ACECONV_NOEXCEPT;

/* A few words for a code, for messages: "bad data". */
ACECONV_EXPORT const char *aceconv_code_text(aceconv_code code) ACECONV_NOEXCEPT;

/* ACECONV_VERSION of the library that runs. */
ACECONV_EXPORT const char *aceconv_version(void) ACECONV_NOEXCEPT;

/* ---- Opening -------------------------------------------------------------- */

typedef enum aceconv_schema ACECONV_ENUM {
    ACECONV_SCHEMA_ANY = 0, /* as the data tell */
    ACECONV_SCHEMA_BASE = 1,
    ACECONV_SCHEMA_UM = 2
} aceconv_schema;

typedef enum aceconv_format ACECONV_ENUM {
    ACECONV_FORMAT_ANY = 0, /* recognised by how the input starts; as output, JSON */
    ACECONV_FORMAT_JSON = 1,
    ACECONV_FORMAT_NDJSON = 2, /* an entry a line */
    ACECONV_FORMAT_XML = 3,
    ACECONV_FORMAT_CBOR = 4,      /* encodings; written with labels */
    ACECONV_FORMAT_BARE_CBOR = 5, /* encodings written without labels */
    ACECONV_FORMAT_TEXT = 6       /* an entry a line in plain words, for people; output alone */
} aceconv_format;

typedef enum aceconv_backend ACECONV_ENUM {
    ACECONV_BACKEND_BULK = 0,
    ACECONV_BACKEND_VALIDATING = 1 /* slower, with the same results */
} aceconv_backend;

typedef struct aceconv_options {
    size_t size;             /* sizeof(aceconv_options) */
    aceconv_schema schema;   /* of inputs; others are refused. ANY: as they tell */
    aceconv_backend backend; /* for JSON */
    const char *modules;     /* the folder of the YANG modules; null: those installed */
    const char *plugin;      /* the file of another build of the plug-in; null: the one built in */
    int no_losses;           /* not 0: losses are not looked for, which saves time */
} aceconv_options;

/* Opens a converter; `options` may be null. On failure *converter is one that can tell its
 * last error and be closed, or null when there was no memory even for that. */
ACECONV_EXPORT aceconv_code aceconv_open(const aceconv_options *options,
                                         aceconv_converter **converter) ACECONV_NOEXCEPT;

/* Null is allowed. */
ACECONV_EXPORT void aceconv_close(aceconv_converter *converter) ACECONV_NOEXCEPT;

/* ---- One entry ------------------------------------------------------------ */

typedef struct aceconv_input {
    size_t size; /* sizeof(aceconv_input) */
    const void *data;
    size_t length;
    aceconv_format format;
    aceconv_schema schema; /* ANY: the converter's */
    const char *list;      /* the name of the entry's list, where the data have none; or null */
    uint32_t sequence;     /* its number likewise, or 0 */
    /* aceconv_encode: the entry's earlier encoding, or null. The base schema cannot say
     * user-defined fields, and takes them over from there. */
    const void *stored;
    size_t stored_length;
} aceconv_input;

typedef enum aceconv_value_kind ACECONV_ENUM {
    ACECONV_VALUE_ABSENT = 0,
    ACECONV_VALUE_PRESENT = 1, /* without a value of its own */
    ACECONV_VALUE_NUMBER = 2,
    ACECONV_VALUE_KEYWORD = 3, /* a number that has a name */
    ACECONV_VALUE_BOOLEAN = 4,
    ACECONV_VALUE_ADDRESS = 5,
    ACECONV_VALUE_TEXT = 6,
    ACECONV_VALUE_USER_FIELDS = 7 /* several; `shown` lists them */
} aceconv_value_kind;

typedef struct aceconv_value {
    aceconv_value_kind kind;
    uint64_t number;   /* NUMBER, KEYWORD, BOOLEAN; ADDRESS: its first byte is the highest */
    const char *text;  /* KEYWORD: the name or names; ADDRESS: a dotted quad; TEXT; else null */
    const char *shown; /* as people read it: "80 (www)"; null if ABSENT */
} aceconv_value;

/* A loss: what the product does not say of the entry. Or a difference of two entries. */
typedef struct aceconv_change {
    const char *field; /* of the record, "" for what no record carries */
    const char *leaf;  /* path below the entry, "" where the schema has none */
    aceconv_value before;
    aceconv_value after;
    const char *reason; /* "" only of a plain difference */
    int widens;         /* not 0: the entry matches more packets than before */
} aceconv_change;

/* A field of a record that is marked or not zero, or a mark without a field. */
typedef struct aceconv_field {
    const char *name;
    const char *leaf; /* path below the entry, "" where its schema has none */
    const char *bits; /* presence bits that are set: "5", "2:0-2,8-10"; "-" for none */
    uint32_t offset;  /* bytes from the record's start */
    uint32_t width;   /* bytes; 0 of a mark without a field */
    aceconv_value value;
    const char *note; /* what is unusual about it, or "" */
} aceconv_field;

typedef struct aceconv_result {
    const uint8_t *bytes; /* the product: an encoding, or text; never null */
    size_t length;
    const char *list;      /* null where it is not known */
    uint32_t sequence;     /* 0 where it is not known */
    aceconv_schema schema; /* of the product, ANY where an encoding does not tell */
    uint64_t line;         /* where the entry stands in its input, as in aceconv_error */
    uint64_t ordinal;
    const char *words; /* the entry in plain words: of aceconv_inspect, or beside changes; or "" */
    const char *words_after;       /* and as it comes out, beside changes; or "" */
    const aceconv_change *changes; /* losses; of aceconv_diff the differences */
    size_t change_count;
    const aceconv_field *fields; /* of aceconv_inspect */
    size_t field_count;
} aceconv_result;

/* The encoding of a text, without a label. */
ACECONV_EXPORT aceconv_code aceconv_encode(aceconv_converter *converter, const aceconv_input *entry,
                                           const aceconv_result **result) ACECONV_NOEXCEPT;

/* The text of an encoding on one line, as JSON, XML or plain words. */
ACECONV_EXPORT aceconv_code aceconv_decode(aceconv_converter *converter,
                                           const aceconv_input *encoding, aceconv_format format,
                                           const aceconv_result **result) ACECONV_NOEXCEPT;

/* The text in the schema `to` of a text or an encoding, as JSON or XML. */
ACECONV_EXPORT aceconv_code aceconv_convert(aceconv_converter *converter,
                                            const aceconv_input *entry, aceconv_schema to,
                                            aceconv_format format,
                                            const aceconv_result **result) ACECONV_NOEXCEPT;

/* The fields of the record of a text or an encoding; the bytes tell the same as one JSON object,
 * and the changes what the entry's schema cannot say of it. */
ACECONV_EXPORT aceconv_code aceconv_inspect(aceconv_converter *converter,
                                            const aceconv_input *entry,
                                            const aceconv_result **result) ACECONV_NOEXCEPT;

/* What does not come back when the entry is encoded and decoded again; the bytes are its
 * encoding. */
ACECONV_EXPORT aceconv_code aceconv_check(aceconv_converter *converter, const aceconv_input *entry,
                                          const aceconv_result **result) ACECONV_NOEXCEPT;

/* How the meaning of two entries differs, texts or encodings, of either schema. No bytes; list
 * and sequence number are those of `before`. */
ACECONV_EXPORT aceconv_code aceconv_diff(aceconv_converter *converter, const aceconv_input *before,
                                         const aceconv_input *after,
                                         const aceconv_result **result) ACECONV_NOEXCEPT;

/* ---- Many entries --------------------------------------------------------- */

typedef enum aceconv_verb ACECONV_ENUM {
    ACECONV_ENCODE = 1,
    ACECONV_DECODE = 2,
    ACECONV_CONVERT = 3,
    ACECONV_INSPECT = 4, /* the output is a JSON object a line */
    ACECONV_CHECK = 5,   /* there is no output */
    ACECONV_READ = 6     /* the entries as they came, each by itself; there is no output */
} aceconv_verb;

enum { ACECONV_READ_LATER = -2 };

/* Callbacks run on the thread that called aceconv_run, in the input's order; all but `read`
 * may be null. One that returns anything but 0 ends the run with ACECONV_CANCELLED. They
 * must not call the converter that runs. */
typedef struct aceconv_stream {
    size_t size; /* sizeof(aceconv_stream) */
    aceconv_verb verb;
    aceconv_format from;   /* of the input */
    aceconv_schema schema; /* of the input; ANY: the converter's */
    aceconv_schema to;     /* of the output of ACECONV_CONVERT */
    aceconv_format format; /* of the output; ANY: a JSON document, or encodings with labels */
    unsigned jobs;         /* threads, up to 256; 0 is 1 */
    void *context;         /* handed to the callbacks */
    /* Fills in up to `size` bytes and returns how many, 0 at the end, -1 on failure. Unless it
     * `may_wait` it can return ACECONV_READ_LATER when nothing is there yet: entries that have
     * been read are then finished before it is called again. */
    ptrdiff_t (*read)(void *context, void *buffer, size_t size, int may_wait);
    /* Takes the output, in pieces. After a run that failed it is not whole. */
    int (*write)(void *context, const void *bytes, size_t length);
    /* Each good entry and what was made of it. */
    int (*entry)(void *context, const aceconv_result *entry);
    /* Each loss, behind its entry. */
    int (*loss)(void *context, const aceconv_result *entry, const aceconv_change *loss);
    /* Each bad entry; the run goes on behind it, or ends where the rest cannot be read. Null:
     * the first one ends the run with its code. */
    int (*fault)(void *context, const aceconv_error *fault);
} aceconv_stream;

typedef struct aceconv_tally {
    uint64_t entries; /* bad ones included */
    uint64_t faults;
    uint64_t losses;
    uint64_t entries_with_losses;
    uint64_t entries_widened; /* that match more than before */
} aceconv_tally;

/* `tally` may be null, and is filled in on failure too. */
ACECONV_EXPORT aceconv_code aceconv_run(aceconv_converter *converter, const aceconv_stream *stream,
                                        aceconv_tally *tally) ACECONV_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
