#include "tools/pages/markdown.h"

#include <md4c.h>
#include <stdexcept>
#include <utility>

namespace aceconv::pages {
namespace {

/// Follows the parser; every step returns 0, or another number at a fault, which ends the parsing.
class Writer {
  public:
    std::vector<Section> sections = {{}};
    const char *fault = nullptr;

    int enter(MD_BLOCKTYPE type, const void *detail) {
        switch (type) {
        case MD_BLOCK_DOC:
        case MD_BLOCK_TBODY:
        case MD_BLOCK_TH:
        case MD_BLOCK_TD:
            break;
        case MD_BLOCK_H:
            level_ = static_cast<const MD_BLOCK_H_DETAIL *>(detail)->level;
            if (level_ == 2) {
                sections.emplace_back();
            } else if (level_ == 3) {
                line(".SS ");
            }
            break;
        case MD_BLOCK_P:
            if (!fresh_) {
                line(".PP\n");
            }
            break;
        case MD_BLOCK_OL:
            number_ = static_cast<const MD_BLOCK_OL_DETAIL *>(detail)->start;
            break;
        case MD_BLOCK_UL:
            number_ = 0;
            break;
        case MD_BLOCK_LI:
            line(number_ == 0 ? ".IP \\(bu 2\n" : ".IP " + std::to_string(number_++) + ". 4\n");
            fresh_ = true;
            break;
        case MD_BLOCK_CODE:
            line(fresh_ ? ".RS 4\n.EX\n" : ".PP\n.RS 4\n.EX\n");
            literal_ = true;
            break;
        case MD_BLOCK_TABLE:
            return static_cast<const MD_BLOCK_TABLE_DETAIL *>(detail)->col_count == 2
                       ? 0
                       : refuse("a table of other than two columns");
        case MD_BLOCK_THEAD:
            hidden_ = true;
            break;
        case MD_BLOCK_TR:
            if (!hidden_) {
                line(".TP\n");
            }
            break;
        default:
            return refuse("a quotation, a rule or HTML");
        }
        return 0;
    }

    int leave(MD_BLOCKTYPE type) {
        switch (type) {
        case MD_BLOCK_H:
        case MD_BLOCK_P:
        case MD_BLOCK_LI:
        case MD_BLOCK_TD:
            line("");
            break;
        case MD_BLOCK_CODE:
            line(".EE\n.RE\n");
            literal_ = false;
            break;
        case MD_BLOCK_THEAD:
            hidden_ = false;
            break;
        default:
            return 0;
        }
        fresh_ = type == MD_BLOCK_H;
        level_ = 0;
        return 0;
    }

    int span(MD_SPANTYPE type, bool entered) {
        if (type == MD_SPAN_CODE || type == MD_SPAN_STRONG || type == MD_SPAN_EM) {
            write(!entered ? "\\fR" : type == MD_SPAN_EM ? "\\fI" : "\\fB");
            literal_ = type == MD_SPAN_CODE && entered;
            return 0;
        }
        return type == MD_SPAN_A ? 0 : refuse("an image");
    }

    int text(MD_TEXTTYPE type, std::string_view text) {
        if (level_ == 2) {
            sections.back().title += text;
        } else if (type == MD_TEXT_SOFTBR) {
            write("\n");
        } else if (type == MD_TEXT_NORMAL || type == MD_TEXT_CODE) {
            write(escaped(text, literal_));
        } else {
            return refuse("an entity, a break or HTML");
        }
        return 0;
    }

  private:
    int refuse(const char *what) {
        fault = what;
        return 1;
    }
    /// Not the title of the whole, and not the head of a table.
    void write(std::string_view roff) {
        if (hidden_ || level_ == 1 || level_ == 2) {
            return;
        }
        std::string &body = sections.back().body;
        const bool control = !roff.empty() && (roff[0] == '.' || roff[0] == '\'');
        body += control && at_begin() ? "\\&" : "";
        body += roff;
    }
    /// A request, or the end of a line.
    void line(std::string_view request) {
        std::string &body = sections.back().body;
        body += at_begin() ? "" : "\n";
        body += request;
    }
    [[nodiscard]] bool at_begin() const {
        const std::string &body = sections.back().body;
        return body.empty() || body.back() == '\n';
    }

    unsigned level_ = 0;  // of the heading that is read
    unsigned number_ = 0; // of the next item; 0: they have none
    bool literal_ = false;
    bool hidden_ = false;
    bool fresh_ = true; // a paragraph begins here without being told
};

} // namespace

std::string escaped(std::string_view text, bool literal) {
    std::string roff;
    bool begins = literal; // only literal text has lines of its own
    for (const char c : text) {
        if (begins && (c == '.' || c == '\'')) {
            roff += "\\&";
        }
        begins = literal && c == '\n';
        switch (c) {
        case '\\':
            roff += "\\e";
            break;
        case '-':
            roff += literal ? "\\-" : "-";
            break;
        case '\'':
            roff += literal ? "\\(aq" : "'";
            break;
        case '`':
            roff += "\\(ga";
            break;
        case '^':
            roff += "\\(ha";
            break;
        case '~':
            roff += "\\(ti";
            break;
        default:
            roff += c;
        }
    }
    return roff;
}

std::vector<Section> sections_of(const std::string &markdown) {
    MD_PARSER parser = {};
    parser.flags = MD_FLAG_TABLES | MD_FLAG_NOHTML;
    parser.enter_block = [](MD_BLOCKTYPE type, void *detail, void *writer) {
        return static_cast<Writer *>(writer)->enter(type, detail);
    };
    parser.leave_block = [](MD_BLOCKTYPE type, void *, void *writer) {
        return static_cast<Writer *>(writer)->leave(type);
    };
    parser.enter_span = [](MD_SPANTYPE type, void *, void *writer) {
        return static_cast<Writer *>(writer)->span(type, true);
    };
    parser.leave_span = [](MD_SPANTYPE type, void *, void *writer) {
        return static_cast<Writer *>(writer)->span(type, false);
    };
    parser.text = [](MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size, void *writer) {
        return static_cast<Writer *>(writer)->text(type, {text, size});
    };
    Writer writer;
    if (md_parse(markdown.data(), static_cast<MD_SIZE>(markdown.size()), &parser, &writer) != 0) {
        throw std::runtime_error(writer.fault == nullptr ? "not readable" : writer.fault);
    }
    return std::move(writer.sections);
}

} // namespace aceconv::pages
