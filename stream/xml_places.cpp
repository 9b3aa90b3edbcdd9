#include "stream/xml_places.h"

#include <algorithm>
#include <iterator>

#include "stream/text.h"

namespace aceconv {
namespace {

using Places = std::uint32_t;
constexpr Places in(Place place) {
    return Places{1} << static_cast<unsigned>(place);
}

struct Known {
    std::string_view space, name;
    Places around; // where it may stand
    Place place;
};

constexpr std::string_view netconf = "urn:ietf:params:xml:ns:netconf:base:1.0";
constexpr std::string_view netconf_nmda = "urn:ietf:params:xml:ns:yang:ietf-netconf-nmda";
constexpr std::string_view restconf = "urn:ietf:params:xml:ns:yang:ietf-restconf";
constexpr std::string_view ours = ""; // of either schema
constexpr Places around_data = in(Place::input) | in(Place::reply);

constexpr Known elements[] = {
    {netconf, "rpc-reply", in(Place::input), Place::reply},
    {netconf, "ok", in(Place::reply), Place::ok},
    {netconf, "rpc-error", around_data, Place::error},
    {restconf, "errors", in(Place::input), Place::error},
    {netconf, "data", around_data, Place::data},
    {netconf_nmda, "data", around_data, Place::data},
    {restconf, "data", in(Place::input), Place::data},
    {netconf, "config", around_data, Place::data},
    {ours, "acls", in(Place::input) | in(Place::data), Place::acls},
    {ours, "acl", in(Place::input) | in(Place::acls), Place::acl},
    {ours, "name", in(Place::acl), Place::name},
    {ours, "entry", in(Place::input) | in(Place::acl), Place::entry},
};

} // namespace

Found find_place(std::string_view space, std::string_view name, Place around) {
    if (around == Place::error || around == Place::error_part) {
        return {Place::error_part, true, false};
    }
    const std::string_view sought = schema_of_namespace(space) ? ours : space;
    const bool known_space =
        schema_of_namespace(space) ||
        (!space.empty() && std::any_of(std::begin(elements), std::end(elements),
                                       [&](const Known &row) { return row.space == space; }));
    if (!known_space) {
        const bool other = !space.empty() && modules_stand_in(around);
        return {other ? std::optional(Place::other) : std::nullopt, false, false};
    }
    for (const Known &row : elements) {
        if (row.space == sought && row.name == name && (row.around & in(around)) != 0) {
            return {row.place, true,
                    row.place == Place::reply || row.place == Place::data ||
                        (row.place == Place::acl && around == Place::input)};
        }
    }
    return {std::nullopt, true, false};
}

} // namespace aceconv
