// The cost of reading the text, and nothing else: walks the entries of standard
// input, one JSON object a line, with simdjson, unescapes every string, parses
// every number and writes how many entries and members there were. Names are
// taken as they stand in the text. Nothing is copied but the start of a line that
// a read cuts.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>
#include <vector>

#include <simdjson.h>
#include <unistd.h>

namespace {

namespace ondemand = simdjson::ondemand;

struct Walk {
    std::uint64_t entries = 0;
    std::uint64_t members = 0;
    std::uint64_t sum = 0; // of names and values, so that none of them is passed over
};

void visit(ondemand::value value, Walk &walk);

void visit_members(ondemand::object object, Walk &walk) {
    for (auto field : object) {
        ++walk.members;
        walk.sum += static_cast<unsigned char>(*field.key().value().raw());
        visit(field.value(), walk);
    }
}

void visit(ondemand::value value, Walk &walk) {
    switch (value.type()) {
    case ondemand::json_type::object:
        visit_members(value.get_object(), walk);
        break;
    case ondemand::json_type::array:
        for (auto element : value.get_array()) {
            visit(element.value(), walk);
        }
        break;
    case ondemand::json_type::string:
        walk.sum += value.get_string().value().size();
        break;
    case ondemand::json_type::number:
        walk.sum += value.get_uint64().value();
        break;
    case ondemand::json_type::boolean:
        walk.sum += value.get_bool().value() ? 1 : 0;
        break;
    case ondemand::json_type::null:
        walk.sum += value.is_null() ? 1 : 0;
        break;
    }
}

// Standard input in pieces of whole lines, with room behind them for what simdjson
// reads beyond their end.
class Lines {
  public:
    // The next piece, empty at the end of the input. It stands until the next call.
    std::string_view next() {
        held_ -= taken_;
        std::memmove(buffer_.data(), buffer_.data() + taken_, held_);
        for (std::size_t searched = 0;; searched = held_) {
            if (held_ == room()) {
                buffer_.resize(2 * buffer_.size());
            }
            const ssize_t got = read(STDIN_FILENO, buffer_.data() + held_, room() - held_);
            if (got < 0) {
                throw std::system_error(errno, std::generic_category(), "cannot read");
            }
            held_ += static_cast<std::size_t>(got);
            const std::string_view fresh(buffer_.data() + searched, held_ - searched);
            const std::size_t last = fresh.rfind('\n');
            if (got == 0 || last != std::string_view::npos) {
                taken_ = got == 0 ? held_ : searched + last + 1;
                return {buffer_.data(), taken_};
            }
        }
    }

  private:
    [[nodiscard]] std::size_t room() const { return buffer_.size() - simdjson::SIMDJSON_PADDING; }

    std::vector<char> buffer_ = std::vector<char>(1 << 18);
    std::size_t held_ = 0;
    std::size_t taken_ = 0;
};

void walk_input(Walk &walk) {
    ondemand::parser parser;
    Lines lines;
    for (auto text = lines.next(); !text.empty(); text = lines.next()) {
        // A batch of the whole piece: no second thread looks for the next one.
        ondemand::document_stream entries =
            parser.iterate_many(text.data(), text.size(), text.size());
        for (auto entry : entries) {
            visit_members(entry.get_object().value(), walk);
            ++walk.entries;
        }
        if (entries.truncated_bytes() != 0) {
            throw simdjson::simdjson_error(simdjson::INCOMPLETE_ARRAY_OR_OBJECT);
        }
    }
}

} // namespace

int main() {
    Walk walk;
    try {
        walk_input(walk);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "simdjson_walk: entry %ju: %s\n", walk.entries + 1, error.what());
        return 1;
    }
    std::printf("%ju entries, %ju members, sum %ju\n", walk.entries, walk.members, walk.sum);
    return 0;
}
