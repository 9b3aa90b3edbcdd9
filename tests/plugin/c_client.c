/* A C program that loads the plug-in at run time and is its host: a walk over
 * two leaves, a bag that is the record itself, an emitter that counts. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "aceconv/plugin.h"

struct ccv_yang_node {
    const char *name;
    const char *value;
};
static ccv_yang_node leaves[] = {{"sequence-number", "10"}, {"remark", "from C"}};

struct ccv_yang_iter {
    unsigned passes;
    unsigned at;
};
static ccv_yang_iter walk;

struct bag_definition {
    int unused;
};
static bag_definition definition;
static struct ccv_yang_output { char text[256]; } output;
static const bag_descriptor *registered;
static ipv4_acl_config_ace encoded;

static ccv_yang_node *at(const ccv_yang_iter *iterator) {
    return iterator->at < 2 ? &leaves[iterator->at] : NULL;
}

static uint32_t write(const char *name, const char *value) {
    const size_t used = strlen(output.text);
    snprintf(output.text + used, sizeof output.text - used, "%s=%s;", name, value);
    return 0;
}

static uint32_t write_number(const char *name, uint32_t value) {
    char text[12];
    snprintf(text, sizeof text, "%u", value);
    return write(name, text);
}

uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator) {
    walk.passes = node == leaves ? 1 : 0;
    *iterator = &walk;
    return 0;
}
int32_t ccv_yang_iter_is_active(ccv_yang_iter *iterator) {
    return iterator->passes != 0;
}
void ccv_yang_iter_first(uint32_t step, ccv_yang_iter *iterator, uint32_t *status,
                         ccv_yang_node **current, int32_t *index) {
    (void)step, (void)status, (void)index;
    --iterator->passes;
    iterator->at = 0;
    *current = at(iterator);
}
int32_t ccv_yang_iter_is_finished(uint32_t step, ccv_yang_iter *iterator, uint32_t *status) {
    (void)step, (void)status;
    return at(iterator) == NULL;
}
void ccv_yang_iter_next(ccv_yang_iter *iterator, uint32_t *status, ccv_yang_node **current,
                        int32_t *index) {
    (void)status, (void)index;
    ++iterator->at;
    *current = at(iterator);
}
void ccv_yang_iter_destroy(ccv_yang_iter *iterator) {
    iterator->passes = 0;
}

const char *ccv_yang_get_node_name(ccv_yang_node *node) {
    return node->name;
}
uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text) {
    *text = malloc(strlen(node->value) + 1);
    return *text != NULL ? strcpy(*text, node->value) == NULL : 1;
}

uint32_t ccv_yang_container_begin(ccv_yang_output *o, const char *name) {
    return o == &output ? write(name, "{") : 1;
}
uint32_t ccv_yang_container_end(ccv_yang_output *o) {
    return o == &output ? write("", "}") : 1;
}
uint32_t ccv_yang_uint32(ccv_yang_output *o, const char *name, uint32_t value) {
    return o == &output ? write_number(name, value) : 1;
}
uint32_t ccv_yang_enum(ccv_yang_output *o, const char *name, const ccv_yang_keyword *table,
                       uint32_t value) {
    return table != NULL ? ccv_yang_uint32(o, name, value) : 1;
}
uint32_t ccv_yang_enum_or_uint32(ccv_yang_output *o, const char *name,
                                 const ccv_yang_keyword *table, uint32_t value) {
    return ccv_yang_enum(o, name, table, value);
}
uint32_t ccv_yang_string(ccv_yang_output *o, const char *name, const char *text) {
    return o == &output ? write(name, text) : 1;
}

uint32_t bag_register_start(void) {
    return 0;
}
uint32_t bag_register(const bag_descriptor *descriptor) {
    registered = descriptor;
    return 0;
}
uint32_t bag_register_abort(void) {
    return 1;
}
uint32_t bag_register_end(void) {
    return 0;
}
uint32_t bag_definition_init(const bag_descriptor *descriptor, bag_definition **handle) {
    *handle = &definition;
    return descriptor != registered;
}
void bag_definition_free(bag_definition *handle) {
    handle->unused = 0;
}
uint32_t bag_encode_v3(void *out_a, void *out_b, const void *record, bag_definition *handle,
                       uint32_t mode) {
    (void)handle;
    memcpy(&encoded, record, sizeof encoded);
    encoded.remark = strcpy(out_a, encoded.remark);
    return out_b != NULL || mode != 1;
}
uint32_t bag_decode_v3(const uint8_t *bytes, uint32_t length, void *record, bag_definition *handle,
                       uint32_t mode) {
    (void)handle;
    memcpy(record, bytes, length);
    return mode;
}
void bag_free_indirections(void *record, const bag_descriptor *descriptor) {
    ipv4_acl_config_ace *ace = record;
    if (descriptor == registered && ace->remark != encoded.remark) {
        free(ace->remark);
    }
}

static int failed;

static void check(int holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "failed: %s\n", what);
        failed = 1;
    }
}

int main(int argc, char **argv) {
    void *library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (library == NULL) {
        fprintf(stderr, "usage: plugin_c_client PLUGIN (%s)\n", dlerror());
        return 2;
    }
    uint32_t (*enroll)(void);
    const bag_descriptor *(*descriptor)(void);
    uint32_t (*encode)(ccv_yang_node *, const uint8_t *, uint32_t, void *, void *);
    uint32_t (*decode)(ccv_yang_output *, const uint8_t *, uint32_t);
    uint32_t (*police)(ccv_yang_output *, ipv4_acl_config_ace);
    void (*protocol)(ccv_yang_output *, ipv4_acl_config_ace);
    *(void **)&enroll = dlsym(library, "bag_register_all_ipv4_acl_bags");
    *(void **)&descriptor = dlsym(library, "ipv4_acl_config_ace_bag_getfn");
    *(void **)&encode = dlsym(library, "ccv_custom_encoder_ipv4_acl_ace_um");
    *(void **)&decode = dlsym(library, "ccv_custom_decoder_ipv4_acl_ace");
    *(void **)&police = dlsym(library, "acl_yang_police");
    *(void **)&protocol = dlsym(library, "acl_yang_protocol_common");

    check(enroll() == 0 && registered == descriptor() &&
              registered == dlsym(library, "ipv4_acl_config_ace_bag"),
          "registration");
    check(strcmp(registered->type_name, "ipv4_acl_config_ace") == 0, "type name");

    char remark[32];
    check(encode(leaves, NULL, 0, remark, NULL) == 0, "encoding");
    check(encoded.ConfigurationMask == UINT64_C(1) << 31 && strcmp(remark, "from C") == 0,
          "encoded record");
    check(decode(&output, (const uint8_t *)&encoded, sizeof encoded) == 0 &&
              strstr(output.text, "remark=from C;") != NULL,
          "decoding");

    /* By value: the callee sees both ends of the record. */
    ipv4_acl_config_ace record;
    memset(&record, 0, sizeof record);
    record.ConfigurationMask = UINT64_C(1) << 1;
    record.ConfigurationMask2 = UINT64_C(1) << 24 | UINT64_C(1) << 28;
    record.protocol = 46;
    record.Police.PoliceValue = 4000000000U;
    record.Priority = 3;
    output.text[0] = '\0';
    protocol(&output, record);
    check(police(&output, record) == 0, "police");
    check(strcmp(output.text, "protocol=46;police={;value=4000000000;priority=3;=};") == 0,
          output.text);
    dlclose(library);
    return failed;
}
