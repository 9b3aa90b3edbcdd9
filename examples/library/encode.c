/* Reads an entry from standard input, in JSON or XML, and writes its encoding to standard
 * output; says what the encoding does not keep. */
#include <stdio.h>

#include "aceconv/converter.h"

int main(void) {
    static char entry[1 << 20];
    const aceconv_input input = {
        .size = sizeof input, .data = entry, .length = fread(entry, 1, sizeof entry, stdin)};
    aceconv_converter *converter = NULL;
    const aceconv_result *result = NULL;
    aceconv_code code = aceconv_open(NULL, &converter);
    if (code == ACECONV_OK) {
        code = aceconv_encode(converter, &input, &result);
    }
    if (code == ACECONV_OK) {
        for (size_t i = 0; i < result->change_count; ++i) {
            fprintf(stderr, "lost: %s: %s\n", result->changes[i].leaf, result->changes[i].reason);
        }
        fwrite(result->bytes, 1, result->length, stdout);
    } else {
        const aceconv_error *error = aceconv_last_error(converter);
        fprintf(stderr, "%s: %s\n", error == NULL ? "" : error->path,
                error == NULL ? aceconv_code_text(code) : error->text);
    }
    aceconv_close(converter);
    return code == ACECONV_OK ? 0 : 1;
}
