// The namespaces that are declared around an element.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace aceconv {

class XmlNamespaces {
  public:
    using Prefixes = std::vector<std::string>;

    /// The prefix "" is the default, the namespace "" stands for none.
    void open(std::string_view prefix, std::string_view space);
    void close(std::string_view prefix);
    /// The prefixes opened since the last call: those that the tag of the element that
    /// begins declares.
    Prefixes take_opened() { return std::exchange(opened_, {}); }

    /// What is in force and may be used in `text`, an element that declares `own`, as
    /// attributes, each with a blank in front.
    [[nodiscard]] std::string used_in(std::string_view text, const Prefixes &own) const;

    /// The size of what is in force.
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

  private:
    std::map<std::string, std::vector<std::string>, std::less<>> spaces_; // innermost last
    std::size_t bytes_ = 0;
    Prefixes opened_;
};

} // namespace aceconv
