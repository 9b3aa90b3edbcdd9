// Entries and what is made of them, in the input's order, on as many threads as
// there are to be.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "converter/work.h"
#include "stream/codec.h"
#include "stream/source.h"

namespace aceconv {

/// Makes the product of one entry. Called by several threads at once, each with a
/// codec of its own; must depend on nothing but the entry. Throws DataError.
using Work = std::function<void(Codec &, Entry &, Product &)>;

/// Reads entries ahead in batches, a bounded number of them and as far as they are
/// there: no entry that has been read waits for another. Any thread may work on a batch: the
/// caller's own while it waits, and up to `jobs` - 1 others, started when the input proves long
/// enough to be worth their start.
class EntryStream {
  public:
    struct Item {
        Entry entry;
        Product product;
        std::exception_ptr fault; // of reading the entry, or of the work on it
    };

    /// `source`, which `meter` belongs to, must outlive the stream; it is asked for
    /// more behind every DataError. `before_wait` is called when every entry has been
    /// handed out and the input pauses. Throws IoError.
    EntryStream(Source &source, InputMeter &meter, const CodecSetup &setup, unsigned jobs,
                Work work, std::function<void()> before_wait);
    ~EntryStream();
    EntryStream(const EntryStream &) = delete;
    EntryStream &operator=(const EntryStream &) = delete;

    /// The next entry, null at the end; valid until the next call. Throws IoError
    /// when a thread could not start.
    Item *next();

  private:
    struct Batch {
        std::vector<Item> items;
        std::size_t count = 0;               // of the items in use
        std::vector<std::string_view> texts; // of them
        bool done = false;
    };

    bool read(Entry &entry, bool wait);
    void fill(Batch &batch, bool wait);
    static void look_ahead(Codec &codec, Batch &batch);
    void work_on(Codec &codec, Batch &batch) const;
    void read_ahead(std::unique_lock<std::mutex> &lock);
    bool take_batch(Codec &codec, std::unique_lock<std::mutex> &lock);
    void help();
    void start_thread();
    [[nodiscard]] Batch &batch(std::size_t number) { return ring_[number % ring_.size()]; }

    Source &source_;
    InputMeter &meter_;
    const CodecSetup setup_;
    unsigned jobs_;
    const Work work_;
    const std::function<void()> before_wait_;
    Codec codec_;              // of the caller's thread
    Batch *current_ = nullptr; // whose items are handed out
    std::size_t at_ = 0;       // the next of them
    bool ended_ = false;       // nothing more to read

    std::mutex mutex_; // guards what follows, but not the batches' items
    std::condition_variable unworked_, done_;
    std::vector<Batch> ring_;
    // Batches by number: handed out, taken for work, read.
    std::size_t given_ = 0;
    std::size_t taken_ = 0;
    std::size_t read_ = 0;
    bool stop_ = false;
    std::exception_ptr failure_; // of a thread's start
    std::vector<std::thread> threads_;
};

} // namespace aceconv
