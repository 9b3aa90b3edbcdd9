/* Converts the entries of a file of lines through the library, one call an entry:
 *   library_loop encode|convert base|um FILE
 * Says how many there were. */
#include <stdio.h>
#include <string.h>

#include "aceconv/converter.h"

int main(int argc, char **argv) {
    static char line[1 << 20];
    FILE *const lines = argc == 4 ? fopen(argv[3], "r") : NULL;
    const int um = argc == 4 && strcmp(argv[2], "um") == 0;
    const aceconv_options options = {.size = sizeof options,
                                     .schema = um ? ACECONV_SCHEMA_UM : ACECONV_SCHEMA_BASE};
    aceconv_converter *converter = NULL;
    if (lines == NULL || aceconv_open(&options, &converter) != ACECONV_OK) {
        return 2;
    }
    aceconv_code code = ACECONV_OK;
    unsigned count = 0;
    while (code == ACECONV_OK && fgets(line, sizeof line, lines) != NULL) {
        const aceconv_input input = {.size = sizeof input,
                                     .data = line,
                                     .length = strlen(line),
                                     .format = ACECONV_FORMAT_JSON};
        const aceconv_result *result = NULL;
        code =
            strcmp(argv[1], "encode") == 0
                ? aceconv_encode(converter, &input, &result)
                : aceconv_convert(converter, &input, um ? ACECONV_SCHEMA_BASE : ACECONV_SCHEMA_UM,
                                  ACECONV_FORMAT_JSON, &result);
        count += code == ACECONV_OK;
    }
    printf("%u entries\n", count);
    aceconv_close(converter);
    fclose(lines);
    return (int)code;
}
