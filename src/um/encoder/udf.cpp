#include <cstdlib>
#include <cstring>

#include "aceconv/plugin.h"
#include "um/encoder/parsers.h"

namespace ace::um {

namespace {

std::uint32_t no_memory() {
    trace(trace_line::udf_memory);
    return ACE_STATUS_NO_MEMORY;
}

/// Zeroed elements, never null for a count that could be allocated.
ace_udf_element *new_elements(std::uint32_t count) {
    return static_cast<ace_udf_element *>(std::calloc(count, sizeof(ace_udf_element)));
}

/// The entry's first list: the count is stored before the allocation.
std::uint32_t start_array(ccv_yang_node *list, ace_udf_array &udf) {
    const std::uint32_t status = ccv_yang_get_list_entry_count(list, &udf.count);
    if (status != 0) {
        return status;
    }
    udf.elements = new_elements(udf.count);
    return udf.elements != nullptr ? 0 : no_memory();
}

/// A further list: the array grows, and stays as it was when it cannot.
std::uint32_t extend_array(ccv_yang_node *list, ace_udf_array &udf) {
    std::uint32_t added = 0;
    const std::uint32_t status = ccv_yang_get_list_entry_count(list, &added);
    if (status != 0) {
        return status;
    }
    const std::uint32_t count = udf.count + added;
    ace_udf_element *elements = count >= added ? new_elements(count) : nullptr;
    if (elements == nullptr) {
        return no_memory();
    }
    std::memcpy(elements, udf.elements, udf.count * sizeof(ace_udf_element));
    std::free(udf.elements);
    udf.count = count; // member by member: the padding between them stays zero
    udf.elements = elements;
    return 0;
}

std::uint32_t read_name(ccv_yang_node *node, ace_udf_element &element) {
    char *text = nullptr;
    std::uint32_t status = ccv_yang_get_string(node, &text);
    if (status != 0) {
        return status;
    }
    status = clear(element.UDFName, sizeof element.UDFName);
    if (status == 0) {
        status = copy_cut(element.UDFName, sizeof element.UDFName, text);
    }
    std::free(text);
    return status;
}

/// Hexadecimal digits up to the first other character; none give 0.
std::uint32_t read_hexadecimal(ccv_yang_node *node, std::uint32_t &value) {
    char *text = nullptr;
    const std::uint32_t status = ccv_yang_get_string(node, &text);
    if (status == 0) {
        char *end = nullptr;
        value = static_cast<std::uint32_t>(std::strtol(text, &end, 16));
        std::free(text);
    }
    return status;
}

void read_element(Walk &walk, ace_udf_element &element) {
    walk_level(walk, CCV_YANG_STEP_LIST_ENTRY, [&] {
        const UdfLeaf *leaf = find(udf_leaves, ccv_yang_get_node_name(walk.current));
        if (leaf == nullptr) {
            return;
        }
        walk.status = leaf->number == nullptr
                          ? read_name(walk.current, element)
                          : read_hexadecimal(walk.current, element.*leaf->number);
    });
}

} // namespace

std::uint32_t ccv_yang_get_ipv4_udf(ccv_yang_node *list, ccv_yang_iter *iterator,
                                    ace_udf_array &udf) {
    const bool first_list = udf.elements == nullptr;
    const std::uint32_t before = first_list ? 0 : udf.count;
    Walk walk{iterator, list};
    walk.status = first_list ? start_array(list, udf) : extend_array(list, udf);
    std::int32_t index = 0;
    walk_level(
        walk, CCV_YANG_STEP_LIST,
        [&] {
            if (index < 0 || static_cast<std::uint32_t>(index) >= udf.count - before) {
                walk.status = ACE_STATUS_NO_SPACE;
                return;
            }
            read_element(walk, udf.elements[before + static_cast<std::uint32_t>(index)]);
        },
        &index);
    return walk.status;
}

} // namespace ace::um
