/* The emitters of aceconv/host/yang_access.h. */
#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

#include "tree.h"

static uint32_t fail(ccv_yang_output *output, uint32_t status) {
    output->status = output->status != 0 ? output->status : status;
    return output->status;
}

static uint32_t begin(ccv_yang_output *output, node_form form, const char *name) {
    ccv_yang_node *node = output->status == 0 ? tree_add(output->at, form, name, NULL) : NULL;
    if (node == NULL) {
        return fail(output, HOST_NO_MEMORY);
    }
    output->at = node;
    return 0;
}

static uint32_t end(ccv_yang_output *output) {
    ccv_yang_node *ended = output->at;
    if (output->status == 0) {
        output->at = ended->parent;
        if (ended->child == NULL && !ended->presence && ended->form == CONTAINER) {
            tree_remove(ended); /* it says nothing */
        }
    }
    return output->status;
}

static uint32_t leaf(ccv_yang_output *output, const char *name, const char *value) {
    if (value == NULL) {
        return fail(output, HOST_WRONG_VALUE);
    }
    if (output->status == 0 && tree_add(output->at, LEAF, name, value) == NULL) {
        return fail(output, HOST_NO_MEMORY);
    }
    return output->status;
}

uint32_t ccv_yang_container_begin(ccv_yang_output *output, const char *name) {
    return begin(output, CONTAINER, name);
}
uint32_t ccv_yang_container_end(ccv_yang_output *output) {
    return end(output);
}
uint32_t ccv_yang_presence(ccv_yang_output *output) {
    if (output->status == 0) {
        output->at->presence = 1;
    }
    return output->status;
}
uint32_t ccv_yang_list_begin(ccv_yang_output *output, const char *name) {
    return begin(output, LIST, name);
}
uint32_t ccv_yang_list_end(ccv_yang_output *output) {
    return end(output);
}
uint32_t ccv_yang_list_entry_begin(ccv_yang_output *output, const char *name, uint32_t keys) {
    (void)keys; /* this tree makes no difference between a key and another leaf */
    return begin(output, LIST_ENTRY, name);
}
uint32_t ccv_yang_list_entry_end(ccv_yang_output *output) {
    return end(output);
}

static const char *name_of(const ccv_yang_keyword *table, uint32_t value) {
    while (table->name != NULL && table->value != value) {
        ++table;
    }
    return table->name;
}

uint32_t ccv_yang_uint32(ccv_yang_output *output, const char *name, uint32_t value) {
    char text[11];
    snprintf(text, sizeof text, "%u", value);
    return leaf(output, name, text);
}
uint32_t ccv_yang_enum(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t value) {
    return leaf(output, name, name_of(table, value));
}
uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *output, const char *name,
                                 const ccv_yang_keyword *table, uint32_t value) {
    const char *text = name_of(table, value);
    return text != NULL ? leaf(output, name, text) : ccv_yang_uint32(output, name, value);
}

uint32_t ccv_yang_bits(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t bits) {
    char text[1024] = "";
    for (uint32_t bit = 0; bit < 32; ++bit) {
        const char *word = (bits >> bit & 1) != 0 ? name_of(table, bit) : "";
        const size_t used = strlen(text);
        if (word == NULL || used + strlen(word) + 2 > sizeof text) {
            return fail(output, HOST_WRONG_VALUE);
        }
        snprintf(text + used, sizeof text - used, "%s%s", used != 0 && *word ? " " : "", word);
    }
    return leaf(output, name, text);
}

uint32_t ccv_yang_bool(ccv_yang_output *output, const char *name, uint32_t value) {
    return leaf(output, name, value != 0 ? "true" : "false");
}

uint32_t ccv_yang_ipv4(ccv_yang_output *output, const char *name, uint32_t address) {
    char text[INET_ADDRSTRLEN];
    return leaf(output, name, inet_ntop(AF_INET, &address, text, sizeof text));
}

/* UTF-8 of the characters that YANG allows (RFC 7950, section 14). */
static int is_yang_text(const char *text) {
    static const uint32_t least[] = {1, 0x80, 0x800, 0x10000};
    for (const uint8_t *at = (const uint8_t *)text; *at != 0;) {
        const int more = *at < 0xC0 ? 0 : *at < 0xE0 ? 1 : *at < 0xF0 ? 2 : 3;
        uint32_t c = more == 0 ? *at : *at & (0x3FU >> more);
        int whole = *at < 0x80 || (*at >= 0xC0 && *at < 0xF8);
        ++at;
        for (int i = 0; i < more && whole; ++i, ++at) {
            whole = (*at & 0xC0) == 0x80;
            c = c << 6 | (*at & 0x3FU);
        }
        if (!whole || c < least[more] || c > 0x10FFFF ||
            (c < ' ' && c != '\t' && c != '\n' && c != '\r') || (c >= 0xD800 && c <= 0xDFFF) ||
            (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE) {
            return 0;
        }
    }
    return 1;
}

uint32_t ccv_yang_string(ccv_yang_output *output, const char *name, const char *text) {
    return leaf(output, name, text != NULL && is_yang_text(text) ? text : NULL);
}

uint32_t ccv_yang_empty(ccv_yang_output *output, const char *name) {
    return leaf(output, name, "");
}
