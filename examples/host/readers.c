/* The iterator and the readers of aceconv/host/yang_access.h. */
#include <arpa/inet.h>
#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include "tree.h"

struct ccv_yang_iter {
    ccv_yang_node *entry;
    int walked;
    unsigned depth;
    struct {
        ccv_yang_node *node; /* null at the level's end */
        int32_t position;
    } levels[16];
};

static ccv_yang_node *innermost(const ccv_yang_iter *iterator) {
    return iterator->depth == 0 ? NULL : iterator->levels[iterator->depth - 1].node;
}

static void show(const ccv_yang_iter *iterator, ccv_yang_node **current, int32_t *index) {
    *current = innermost(iterator);
    if (index != NULL && *current != NULL && (*current)->form == LIST_ENTRY) {
        *index = iterator->levels[iterator->depth - 1].position;
    }
}

uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator) {
    *iterator = calloc(1, sizeof **iterator);
    if (*iterator == NULL) {
        return HOST_NO_MEMORY;
    }
    (*iterator)->entry = node;
    return 0;
}

int32_t ccv_yang_iter_is_active(ccv_yang_iter *iterator) {
    return !iterator->walked;
}

void ccv_yang_iter_first(uint32_t step, ccv_yang_iter *iterator, uint32_t *status,
                         ccv_yang_node **current, int32_t *index) {
    ccv_yang_node *node = step == CCV_YANG_STEP_ENTRY ? iterator->entry : *current;
    if (node == NULL || iterator->depth == sizeof iterator->levels / sizeof *iterator->levels) {
        *current = NULL;
        *status = HOST_MISPLACED;
        return;
    }
    iterator->walked = 1;
    iterator->levels[iterator->depth].node = node->child;
    iterator->levels[iterator->depth++].position = 0;
    show(iterator, current, index);
}

int32_t ccv_yang_iter_is_finished(uint32_t step, ccv_yang_iter *iterator, uint32_t *status) {
    (void)step, (void)status;
    return innermost(iterator) == NULL;
}

/* An exhausted level has been seen to be so: this step goes on behind it. */
void ccv_yang_iter_next(ccv_yang_iter *iterator, uint32_t *status, ccv_yang_node **current,
                        int32_t *index) {
    (void)status;
    if (iterator->depth > 1 && innermost(iterator) == NULL) {
        --iterator->depth;
    }
    if (innermost(iterator) != NULL) {
        iterator->levels[iterator->depth - 1].node = innermost(iterator)->next;
        ++iterator->levels[iterator->depth - 1].position;
    }
    show(iterator, current, index);
}

void ccv_yang_iter_destroy(ccv_yang_iter *iterator) {
    free(iterator);
}

const char *ccv_yang_get_node_name(ccv_yang_node *node) {
    return node->name;
}

/* Digits alone: strtoull would take blanks and signs. */
static uint32_t read_number(const ccv_yang_node *node, uint32_t largest, uint32_t *number) {
    const char *text = node->form == LEAF ? node->value : "";
    errno = 0;
    const unsigned long long value = strtoull(text, NULL, 10);
    if (*text == '\0' || text[strspn(text, "0123456789")] != '\0' || errno != 0 ||
        value > largest) {
        return HOST_WRONG_VALUE;
    }
    *number = (uint32_t)value;
    return 0;
}

uint32_t ccv_yang_get_uint32(ccv_yang_node *node, uint32_t *value) {
    return read_number(node, UINT32_MAX, value);
}
#define READ_NARROW(bits)                                                                          \
    uint32_t ccv_yang_get_uint##bits(ccv_yang_node *node, uint##bits##_t *value) {                 \
        uint32_t number = *value;                                                                  \
        const uint32_t status = read_number(node, UINT##bits##_MAX, &number);                      \
        *value = (uint##bits##_t)number;                                                           \
        return status;                                                                             \
    }
READ_NARROW(16)
READ_NARROW(8)

/* A null name ends a table; a row of value 0 is one like the others. */
static uint32_t read_name(const ccv_yang_keyword *table, const char *name, size_t length,
                          uint32_t *value) {
    for (; table->name != NULL; ++table) {
        if (strlen(table->name) == length && memcmp(table->name, name, length) == 0) {
            *value = table->value;
            return 0;
        }
    }
    return HOST_WRONG_VALUE;
}

uint32_t ccv_yang_get_enum(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *value) {
    return node->form == LEAF ? read_name(table, node->value, strlen(node->value), value)
                              : HOST_WRONG_VALUE;
}
uint32_t ccv_yang_get_enum_or_uint32(ccv_yang_node *node, const ccv_yang_keyword *table,
                                     uint32_t *value) {
    return ccv_yang_get_enum(node, table, value) == 0 ? 0 : ccv_yang_get_uint32(node, value);
}

uint32_t ccv_yang_get_bits(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *bits) {
    uint32_t set = 0;
    for (const char *name = node->form == LEAF ? node->value : " "; *name != '\0';) {
        const size_t length = strcspn(name, " ");
        uint32_t bit = 0;
        if (read_name(table, name, length, &bit) != 0 || bit > 31) {
            return HOST_WRONG_VALUE;
        }
        set |= UINT32_C(1) << bit;
        name += length + (name[length] == ' ');
    }
    *bits = set;
    return 0;
}

uint32_t ccv_yang_get_bool(ccv_yang_node *node, uint32_t *value) {
    static const ccv_yang_keyword table[] = {{0, "false"}, {1, "true"}, {0, NULL}};
    return ccv_yang_get_enum(node, table, value);
}

/* Addresses are in network byte order, here and in ccv_yang_ipv4. */
uint32_t ccv_yang_get_ipv4(ccv_yang_node *node, uint32_t *address) {
    struct in_addr read;
    if (node->form != LEAF || inet_pton(AF_INET, node->value, &read) != 1) {
        return HOST_WRONG_VALUE;
    }
    *address = read.s_addr;
    return 0;
}

uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text) {
    char *copy = node->form == LEAF ? strdup(node->value) : NULL;
    *text = copy != NULL ? copy : *text;
    return copy != NULL ? 0 : node->form == LEAF ? HOST_NO_MEMORY : HOST_WRONG_VALUE;
}

uint32_t ccv_yang_get_list_entry_count(ccv_yang_node *node, uint32_t *count) {
    if (node->form != LIST) {
        return HOST_WRONG_VALUE;
    }
    *count = 0;
    for (const ccv_yang_node *entry = node->child; entry != NULL; entry = entry->next) {
        ++*count;
    }
    return 0;
}
