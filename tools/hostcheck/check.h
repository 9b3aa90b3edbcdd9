// What a trial has in hand: the host's functions, and the words for what they did.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "tools/hostcheck/host.h"

namespace aceconv::hostcheck {

/// What a trial leaves for the process that watches it, which may outlive it.
struct Notes {
    std::array<char, 64> function; // the host's, called last
    std::array<char, 160> place;   // where in the data
    std::array<char, 1024> broken; // the words; empty while nothing is
    bool done;                     // the trial came to its end: hosts may exit as well
};

class Check {
  public:
    Check(const Functions &functions, Notes &notes) : host(functions), notes_(&notes) {}

    /// For one of several threads of the trial: its own place, and the same report.
    [[nodiscard]] Check for_thread() const {
        Check copy = *this;
        copy.own_ = std::make_shared<Notes>();
        return copy;
    }

    /// Use CALL.
    const Functions &calling(const char *function) {
        note(place().function, function);
        return host;
    }
    /// What is at hand now, as "the leaf \"grant\" of the base entry".
    void at(const std::string &place) { note(this->place().place, place); }

    /// Ends the trial: the function called last broke a promise.
    [[noreturn]] void broken(const std::string &words) { broken(place().function.data(), words); }
    [[noreturn]] void broken(const char *function, const std::string &words);

    void expect(bool holds, const std::string &words) {
        if (!holds) {
            broken(words);
        }
    }
    /// 0 where nothing stands against success.
    void expect_success(std::uint32_t status);

    const Functions &host;

  private:
    template <std::size_t Size>
    static void note(std::array<char, Size> &where, const std::string &text) {
        where[text.copy(where.data(), Size - 1)] = '\0';
    }
    Notes &place() { return own_ != nullptr ? *own_ : *notes_; }

    Notes *notes_;
    std::shared_ptr<Notes> own_;
};

/// A function of the host; whoever watches the trial sees which one was called last.
#define CALL(check, function) (check).calling(#function).function

/// A part of the check, in a process of its own, which ends at the first broken promise.
struct Trial {
    const char *name;
    void (*run)(Check &);
};

void walk_entries(Check &check);
void walk_again(Check &check);
void walk_two_at_once(Check &check);
void keep_the_status(Check &check);
void read_leaves(Check &check);
void refuse_values(Check &check);
void emit_entries(Check &check);
void emit_failures(Check &check);
void register_type(Check &check);
void encode_records(Check &check);
void decode_cut_bytes(Check &check);
void release_records(Check &check);
void trace_and_append(Check &check);
void hold_no_memory(Check &check);
void run_threads(Check &check);
void convert_entries(Check &check);
void convert_with_failures(Check &check);

} // namespace aceconv::hostcheck
