/* The example host with one promise broken, which the variable HOST_FAULT names. It
 * stands in front of the example's functions and passes on what it does not break. */
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <dlfcn.h>
#include <malloc.h>
#include <sched.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>

#include "aceconv/host/bounded_append.h"
#include "aceconv/host/debug.h"
#include "aceconv/hostcheck.h"
#include "tree.h"

#define NEXT(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))

static int broken(const char *fault) {
    const char *wanted = getenv("HOST_FAULT");
    return wanted != NULL && strcmp(wanted, fault) == 0;
}

/* ---- Trees --------------------------------------------------------------------- */

static void swap_first_two(ccv_yang_node *parent) {
    ccv_yang_node *first = parent->child, *second = first != NULL ? first->next : NULL;
    if (second != NULL) {
        first->next = second->next;
        second->next = first;
        parent->child = second;
    }
}

/* Puts the entries of lists in the place of their list. */
static void dissolve_lists(ccv_yang_node *parent) {
    for (ccv_yang_node **link = &parent->child; *link != NULL; link = &(*link)->next) {
        if ((*link)->form == LIST) {
            ccv_yang_node *rest = (*link)->next, *last = (*link)->child;
            *link = last;
            while (last->next != NULL) {
                last = last->next;
            }
            last->next = rest;
        }
        dissolve_lists(*link);
    }
}

ccv_yang_node *hostcheck_tree_create(hostcheck_schema schema, const hostcheck_row *rows) {
    ccv_yang_node *entry = NEXT(hostcheck_tree_create)(schema, rows);
    if (broken("nodes_out_of_order")) {
        swap_first_two(entry);
    }
    if (broken("list_entries_as_nodes")) {
        dissolve_lists(entry);
    }
    return broken("no_tree") ? NULL : entry;
}

/* ---- Iterator ------------------------------------------------------------------ */

static ccv_yang_node *shown; /* by the step before */
static char one_walk[1024];

uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator) {
    if (broken("iterator_not_set")) {
        return 0;
    }
    if (broken("creation_fails")) {
        return 0x77;
    }
    const uint32_t status = NEXT(ccv_yang_iter_create)(node, iterator);
    if (broken("one_walk_for_all")) {
        memcpy(one_walk, *iterator, malloc_usable_size(*iterator));
        *iterator = (ccv_yang_iter *)one_walk;
    }
    return status;
}

int32_t ccv_yang_iter_is_active(ccv_yang_iter *iterator) {
    if (broken("never_active") || broken("always_active")) {
        return broken("always_active");
    }
    return NEXT(ccv_yang_iter_is_active)(iterator);
}

void ccv_yang_iter_first(uint32_t step, ccv_yang_iter *iterator, uint32_t *status,
                         ccv_yang_node **current, int32_t *index) {
    NEXT(ccv_yang_iter_first)(step, iterator, status, current, index);
    if (broken("first_clears_status")) {
        *status = 0;
    }
    if (broken("first_passes_over") && *current != NULL) {
        NEXT(ccv_yang_iter_next)(iterator, status, current, index);
    }
    if (broken("index_from_1") && index != NULL) {
        ++*index;
    }
    shown = *current;
}

int32_t ccv_yang_iter_is_finished(uint32_t step, ccv_yang_iter *iterator, uint32_t *status) {
    if (broken("finished_on_last_node") && shown != NULL && shown->next == NULL) {
        return 1;
    }
    if (broken("levels_do_not_end")) {
        return 0;
    }
    while (broken("hangs")) {
        usleep(1000);
    }
    return NEXT(ccv_yang_iter_is_finished)(step, iterator, status);
}

void ccv_yang_iter_next(ccv_yang_iter *iterator, uint32_t *status, ccv_yang_node **current,
                        int32_t *index) {
    const int32_t before = index != NULL ? *index : 0;
    if (broken("stays_inside") && shown == NULL) {
        return;
    }
    NEXT(ccv_yang_iter_next)(iterator, status, current, index);
    if (broken("pops_too_early") && *current == NULL) {
        NEXT(ccv_yang_iter_next)(iterator, status, current, index);
    }
    if (broken("passes_over_a_node") && *current != NULL && strcmp((*current)->name, "tcp") == 0) {
        NEXT(ccv_yang_iter_next)(iterator, status, current, index);
    }
    if (broken("levels_do_not_end") && *current == NULL) {
        *current = shown;
    }
    if (broken("next_clears_status")) {
        *status = 0;
    }
    if (broken("next_fails") && *current == NULL) {
        *status = 0x77;
    }
    if (broken("index_from_1") && index != NULL && *current != NULL) {
        ++*index;
    }
    if (broken("index_stays") && index != NULL) {
        *index = before;
    }
    shown = *current;
}

void ccv_yang_iter_destroy(ccv_yang_iter *iterator) {
    if (broken("walk_uses_up_the_tree") && iterator != NULL) {
        ccv_yang_node *entry = *(ccv_yang_node **)iterator;
        tree_free(entry->child);
        entry->child = NULL;
    }
    if (broken("null_iterator") && iterator == NULL) {
        abort();
    }
    if (!broken("walks_are_kept") && !broken("one_walk_for_all")) {
        NEXT(ccv_yang_iter_destroy)(iterator);
    }
}

/* ---- Readers ------------------------------------------------------------------- */

const char *ccv_yang_get_node_name(ccv_yang_node *node) {
    static char one_name[256];
    const char *name = node->name;
    if (broken("names_with_prefix") || broken("names_do_not_last")) {
        snprintf(one_name, sizeof one_name, "%s%s", broken("names_with_prefix") ? "ab:" : "", name);
        return one_name;
    }
    return broken("null_name") ? NULL : name;
}

uint32_t ccv_yang_get_uint8(ccv_yang_node *node, uint8_t *value) {
    uint32_t wide = 0;
    if (broken("uint8_writes_4_bytes") && NEXT(ccv_yang_get_uint32)(node, &wide) == 0) {
        memcpy(value, &wide, sizeof wide);
        return 0;
    }
    if (broken("uint8_cuts") && NEXT(ccv_yang_get_uint32)(node, &wide) == 0) {
        *value = (uint8_t)wide;
        return 0;
    }
    return NEXT(ccv_yang_get_uint8)(node, value);
}

uint32_t ccv_yang_get_uint16(ccv_yang_node *node, uint16_t *value) {
    const uint32_t status = NEXT(ccv_yang_get_uint16)(node, value);
    if (broken("uint16_writes_4_bytes")) {
        memset(value + 1, 0, 2);
    }
    if (broken("failure_changes_destination") && status != 0) {
        *value = 0;
    }
    if (broken("failure_is_success")) {
        return 0;
    }
    if (broken("crashes")) {
        abort();
    }
    return status;
}

uint32_t ccv_yang_get_uint32(ccv_yang_node *node, uint32_t *value) {
    const uint32_t status = NEXT(ccv_yang_get_uint32)(node, value);
    return status == 0 && broken("uint32_is_signed") && *value > INT32_MAX ? 0x77 : status;
}

uint32_t ccv_yang_get_enum(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *value) {
    const char *text = node->value;
    for (const ccv_yang_keyword *row = table; row->name != NULL; ++row) {
        if (broken("table_ends_at_value_0") && row->value == 0) {
            return HOST_WRONG_VALUE;
        }
        if ((broken("names_may_be_cut") && strncmp(row->name, text, strlen(text)) == 0) ||
            (broken("case_is_ignored") && strcasecmp(row->name, text) == 0)) {
            *value = row->value;
            return 0;
        }
    }
    return NEXT(ccv_yang_get_enum)(node, table, value);
}

uint32_t ccv_yang_get_enum_or_uint32(ccv_yang_node *node, const ccv_yang_keyword *table,
                                     uint32_t *value) {
    return broken("names_alone") ? NEXT(ccv_yang_get_enum)(node, table, value)
                                 : NEXT(ccv_yang_get_enum_or_uint32)(node, table, value);
}

uint32_t ccv_yang_get_bits(ccv_yang_node *node, const ccv_yang_keyword *table, uint32_t *bits) {
    uint32_t set = 0;
    uint32_t status = NEXT(ccv_yang_get_bits)(node, table, &set);
    if (broken("unknown_bits_pass")) {
        status = 0;
    }
    if (status == 0) {
        *bits = broken("bits_from_1") ? set << 1 : set;
    }
    return status;
}

uint32_t ccv_yang_get_bool(ccv_yang_node *node, uint32_t *value) {
    const uint32_t status = NEXT(ccv_yang_get_bool)(node, value);
    if (broken("true_is_255") && status == 0 && *value != 0) {
        *value = 255;
    }
    if (broken("exits")) {
        exit(0);
    }
    return status;
}

uint32_t ccv_yang_get_ipv4(ccv_yang_node *node, uint32_t *address) {
    const uint32_t status = NEXT(ccv_yang_get_ipv4)(node, address);
    if (broken("address_turned_round") && status == 0) {
        *address = ntohl(*address);
    }
    return status;
}

uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text) {
    static char own[256];
    if (broken("reader_gives_its_own")) {
        *text = node->value;
        return 0;
    }
    if (broken("reader_gives_no_block")) {
        static unsigned reads;
        char *part = own + 64 * (reads++ % 4);
        snprintf(part, 64, "%s", node->value);
        *text = part;
        return 0;
    }
    const uint32_t status = NEXT(ccv_yang_get_string)(node, text);
    if (broken("reader_frees")) {
        free(node->value);
        node->value = strdup("");
    }
    return status;
}

uint32_t ccv_yang_get_list_entry_count(ccv_yang_node *node, uint32_t *count) {
    const uint32_t status = NEXT(ccv_yang_get_list_entry_count)(node, count);
    *count += broken("one_entry_too_many") ? 1 : 0;
    return status;
}

/* ---- Emitters ------------------------------------------------------------------ */

static ccv_yang_node *last_child(const ccv_yang_output *output) {
    ccv_yang_node *node = output->at->child;
    while (node != NULL && node->next != NULL) {
        node = node->next;
    }
    return node;
}

uint32_t ccv_yang_container_end(ccv_yang_output *output) {
    if (output->at == output->root) {
        return 0;
    }
    const uint32_t status = NEXT(ccv_yang_container_end)(output);
    if (broken("ends_two_levels") && output->at != output->root) {
        output->at = output->at->parent;
    }
    return status;
}

uint32_t ccv_yang_presence(ccv_yang_output *output) {
    return broken("presence_is_ignored") ? 0 : NEXT(ccv_yang_presence)(output);
}

uint32_t ccv_yang_list_end(ccv_yang_output *output) {
    if (broken("entries_out_of_order")) {
        swap_first_two(output->at);
    }
    return NEXT(ccv_yang_list_end)(output);
}

uint32_t ccv_yang_enum(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t value) {
    const uint32_t status = NEXT(ccv_yang_enum)(output, name, table, value);
    if (broken("value_without_row_passes")) {
        output->status = 0;
    }
    return status;
}

uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *output, const char *name,
                                 const ccv_yang_keyword *table, uint32_t value) {
    return broken("always_a_number") ? NEXT(ccv_yang_uint32)(output, name, value)
                                     : NEXT(ccv_yang_enum_or_uint32)(output, name, table, value);
}

uint32_t ccv_yang_bits(ccv_yang_output *output, const char *name, const ccv_yang_keyword *table,
                       uint32_t bits) {
    uint32_t known = 0;
    for (const ccv_yang_keyword *row = table; row->name != NULL; ++row) {
        known |= UINT32_C(1) << row->value;
    }
    return NEXT(ccv_yang_bits)(output, name, table,
                               broken("bit_without_row_passes") ? bits & known : bits);
}

uint32_t ccv_yang_uint32(ccv_yang_output *output, const char *name, uint32_t value) {
    static char text[16];
    if (broken("failure_is_forgotten")) {
        output->status = 0;
    }
    if (broken("number_is_signed") || broken("text_of_all_threads")) {
        snprintf(text, sizeof text, broken("number_is_signed") ? "%d" : "%u", value);
        sched_yield();
        return NEXT(ccv_yang_string)(output, name, text);
    }
    const uint32_t status = NEXT(ccv_yang_uint32)(output, name, value);
    if (broken("leaves_out_of_order") && status == 0) {
        swap_first_two(output->at);
    }
    return status;
}

uint32_t ccv_yang_bool(ccv_yang_output *output, const char *name, uint32_t value) {
    return NEXT(ccv_yang_bool)(output, name, broken("true_is_1_alone") ? value == 1 : value);
}

uint32_t ccv_yang_string(ccv_yang_output *output, const char *name, const char *text) {
    if (broken("null_text_passes") && text == NULL) {
        return 0;
    }
    if (broken("control_characters_pass") && text != NULL && strchr(text, 1) != NULL) {
        return 0;
    }
    const uint32_t status = NEXT(ccv_yang_string)(output, name, text);
    if (broken("no_failure_is_kept")) {
        output->status = 0;
    }
    if (broken("text_is_not_copied") && status == 0) {
        last_child(output)->value = (char *)text;
    }
    return status;
}

uint32_t ccv_yang_empty(ccv_yang_output *output, const char *name) {
    return broken("empty_leaf_is_lost") ? 0 : NEXT(ccv_yang_empty)(output, name);
}

/* ---- Bags ---------------------------------------------------------------------- */

static void *last_block; /* of a remark */

uint32_t bag_register_abort(void) {
    return broken("abort_registers") ? NEXT(bag_register_end)() : NEXT(bag_register_abort)();
}

uint32_t bag_definition_init(const bag_descriptor *descriptor, bag_definition **definition) {
    if (broken("definition_not_set")) {
        return 0;
    }
    if (broken("definitions_are_kept")) {
        last_block = malloc(40);
    }
    return NEXT(bag_definition_init)(descriptor, definition);
}

uint32_t bag_encode_v3(void *out_a, void *out_b, const void *record, bag_definition *definition,
                       uint32_t mode) {
    ipv4_acl_config_ace copy;
    memcpy(&copy, record, sizeof copy);
    if (broken("second_mask_is_lost")) {
        copy.ConfigurationMask2 = 0;
    }
    if (broken("encoding_changes_the_record")) {
        ((ipv4_acl_config_ace *)record)->SetTTL = 1;
    }
    last_block = copy.remark;
    return NEXT(bag_encode_v3)(out_a, out_b, &copy, definition, mode);
}

uint32_t bag_decode_v3(const uint8_t *encoded, uint32_t length, void *record,
                       bag_definition *definition, uint32_t mode) {
    ipv4_acl_config_ace *ace = record;
    const uint8_t before = ace->Priority;
    const volatile uint8_t *beyond = encoded;
    if (broken("reads_beyond_the_bytes")) {
        (void)beyond[length];
    }
    const uint32_t status = NEXT(bag_decode_v3)(encoded, length, record, definition, mode);
    if (broken("memory_must_be_cleared")) {
        ace->Priority |= before;
    }
    if (status == 0 && ace->remark != NULL && broken("encoding_holds_addresses")) {
        ace->remark = last_block;
    }
    if (status == 0 && ace->remark != NULL && broken("records_share_blocks")) {
        static char *shared;
        shared = shared != NULL ? shared : ace->remark;
        ace->remark = shared;
    }
    if (broken("cut_bytes_pass") && status != 0) {
        memset(record, 0, sizeof *ace);
        return 0;
    }
    if (broken("failed_record_owns") && status != 0) {
        last_block = malloc(40);
    }
    return status;
}

uint32_t bag_decode(const uint8_t *encoded, uint32_t length, void *record,
                    const bag_descriptor *descriptor) {
    const uint32_t status = NEXT(bag_decode)(encoded, length, record, descriptor);
    if (broken("stored_fields_are_lost")) {
        ((ipv4_acl_config_ace *)record)->UDF.count = 0;
    }
    return status;
}

void bag_free_indirections(void *record, const bag_descriptor *descriptor) {
    ipv4_acl_config_ace *ace = record;
    void *remark = ace->remark;
    if (broken("count_is_trusted") && ace->UDF.count != 0) {
        ace->UDF.elements->UDFName[0] = 0;
    }
    if (broken("blocks_are_kept")) {
        ace->remark = NULL;
    }
    NEXT(bag_free_indirections)(record, descriptor);
    if (broken("pointers_are_kept")) {
        ace->remark = remark;
    }
}

/* ---- Debug and append ---------------------------------------------------------- */

const uint32_t *ipv4_acl_get_dll_func_regexec(void) {
    return broken("no_filter_flag") ? NULL : NEXT(ipv4_acl_get_dll_func_regexec)();
}

void __strncat_to_buf(size_t size, char *text, const char *piece, size_t room) {
    if (broken("append_copies")) {
        text[0] = '\0';
    }
    NEXT(__strncat_to_buf)(size, text, piece, broken("room_is_ignored") ? size : room);
}
