#include "stream/xml_namespaces.h"

#include <algorithm>
#include <set>

#include "host/xml_parser.h"

namespace aceconv {

void XmlNamespaces::open(std::string_view prefix, std::string_view space) {
    open_.push_back({std::string(prefix), std::string(space)});
    bytes_ += prefix.size() + space.size();
    ++own_;
}

void XmlNamespaces::close(std::string_view prefix) {
    const auto found = std::find_if(open_.rbegin(), open_.rend(),
                                    [&](const Declaration &d) { return d.prefix == prefix; });
    bytes_ -= found->prefix.size() + found->space.size();
    open_.erase(std::next(found).base());
}

std::string XmlNamespaces::inherited() const {
    std::string attributes;
    std::set<std::string_view> declared; // nearer
    const auto declare = [&](const Declaration &d) {
        attributes += d.prefix.empty() ? " xmlns" : " xmlns:" + d.prefix;
        attributes += "=\"" + xml_escaped(d.space) + "\"";
    };
    for (std::size_t i = open_.size(); i-- > 0;) {
        const Declaration &declaration = open_[i];
        if (declared.insert(declaration.prefix).second && i < inherited_) {
            declare(declaration);
        }
    }
    if (declared.count("") == 0) {
        declare({}); // not that of whoever reads the element
    }
    return attributes;
}

} // namespace aceconv
