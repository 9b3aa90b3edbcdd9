// The namespaces that are declared around an element.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace aceconv {

class XmlNamespaces {
  public:
    /// The prefix "" is the default, the namespace "" stands for none.
    void open(std::string_view prefix, std::string_view space);
    void close(std::string_view prefix);
    /// The element whose tag declares what was opened last begins.
    void begin_element() { inherited_ = open_.size() - std::exchange(own_, 0); }

    /// What is in force for the element that began last and not declared by itself, as
    /// attributes, each with a blank in front.
    [[nodiscard]] std::string inherited() const;

    /// The size of what is in force.
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

  private:
    struct Declaration {
        std::string prefix, space;
    };

    std::vector<Declaration> open_; // outermost first
    std::size_t bytes_ = 0;
    std::size_t own_ = 0;       // of the element that begins next
    std::size_t inherited_ = 0; // by the one that began last
};

} // namespace aceconv
