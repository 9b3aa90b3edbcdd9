#include "host/bag/description.h"

#include <charconv>
#include <string>

#include "host/error.h"

namespace aceconv {
namespace {

class Parser {
  public:
    Parser(std::string_view text, DescriptionForm form) : text_(text), form_(form) {}

    std::vector<DescribedType> description() {
        std::vector<DescribedType> types;
        do {
            expect("$");
            DescribedType type{number(), {}};
            expect("=");
            do {
                type.members.push_back(member());
            } while (!accept(";"));
            types.push_back(std::move(type));
        } while (at_ < text_.size());
        return types;
    }

  private:
    DescribedMember member() {
        DescribedMember member{};
        if (form_ == DescriptionForm::long_form) {
            member.name = enclosed("{", '}');
        }
        const std::size_t start = at_;
        type(member);
        member.spelling = text_.substr(start, at_ - start);
        if (form_ == DescriptionForm::short_form && member.code == '$') {
            accept("."); // keeps a number that follows apart
        }
        return member;
    }

    void type(DescribedMember &member) {
        const char first = at_ < text_.size() ? text_[at_] : '\0';
        if (first >= '0' && first <= '9') {
            member.number = number();
            member.code = 'x';
            expect("x");
        } else if (accept("$")) {
            member.code = '$';
            member.number = number();
        } else if (accept("a($")) {
            member.code = 'a';
            member.number = number();
            expect(")");
        } else if (form_ == DescriptionForm::long_form && first == '[') {
            enclosed("[", ']');
            member.code = 'e';
            expect("e");
        } else if (first != '\0' &&
                   std::string_view(form_ == DescriptionForm::short_form ? "HCIDNbse" : "HCIDNbs")
                           .find(first) != std::string_view::npos) {
            member.code = first;
            ++at_;
        } else {
            fail("a type");
        }
    }

    std::string_view enclosed(std::string_view open, char close) {
        expect(open);
        const std::size_t length = text_.substr(at_).find_first_of("{}[]$;");
        if (length == 0 || length == std::string_view::npos || text_[at_ + length] != close) {
            fail("a name");
        }
        const std::string_view name = text_.substr(at_, length);
        at_ += length + 1;
        return name;
    }

    std::uint32_t number() {
        std::uint16_t value = 0;
        const char *const begin = text_.data() + at_;
        const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value);
        if (error != std::errc() || value == 0) {
            fail("a number from 1 to 65535");
        }
        at_ += static_cast<std::size_t>(end - begin);
        return value;
    }

    bool accept(std::string_view token) {
        if (text_.substr(at_, token.size()) != token) {
            return false;
        }
        at_ += token.size();
        return true;
    }

    void expect(std::string_view token) {
        if (!accept(token)) {
            fail("\"" + std::string(token) + "\"");
        }
    }

    [[noreturn]] void fail(const std::string &expected) const {
        throw DataError("", std::string(form_ == DescriptionForm::long_form ? "long" : "short") +
                                " description, character " + std::to_string(at_) + ": expected " +
                                expected);
    }

    std::string_view text_;
    DescriptionForm form_;
    std::size_t at_ = 0;
};

} // namespace

std::vector<DescribedType> parse_description(std::string_view text, DescriptionForm form) {
    return Parser(text, form).description();
}

} // namespace aceconv
