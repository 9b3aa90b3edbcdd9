// What the elements around the entries of XML documents are, and where each may stand.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace aceconv {

enum class Place : std::uint8_t {
    input, // around the documents
    reply, // of a NETCONF server
    ok,
    error, // of a server, and what it holds
    error_part,
    data,  // modules' nodes beside each other
    other, // a node of another module
    acls,
    acl,
    name,
    entry
};

struct Found {
    std::optional<Place> place; // none for what may not stand there
    bool known_space;           // that of a module of ours, or of what may be around them
    bool wraps;                 // taken off
};

/// The element of this namespace and name inside of `around`.
Found find_place(std::string_view space, std::string_view name, Place around);

/// Whether nodes of any module may stand in it.
constexpr bool modules_stand_in(Place place) {
    return place == Place::input || place == Place::data;
}

/// Whether it may have attributes: a reply has those of the request.
constexpr bool takes_attributes(Place place) {
    return place == Place::reply || place == Place::error || place == Place::error_part ||
           place == Place::other;
}

} // namespace aceconv
