#include "converter/entry_stream.h"

#include <system_error>
#include <utility>

#include "stream/errors.h"
#include "stream/unfinished_files.h"

namespace aceconv {
namespace {

constexpr std::size_t batch_entries = 256;
constexpr std::size_t batch_bytes = 64 * 1024;
constexpr std::size_t batches_per_job = 3;
// Loading the modules takes a thread about as long as working on these.
constexpr std::size_t batches_before_help = 8;
// What a reused item may keep of what its last entry needed, in bytes.
constexpr std::size_t kept_bytes = 4096;

template <class Container>
void clear(Container &container) {
    if (container.capacity() > kept_bytes) {
        container = {};
    }
    container.clear();
}

void reset(EntryStream::Item &item) {
    clear(item.entry.text);
    clear(item.entry.encoding);
    clear(item.product.bytes);
    item.product.changes.clear();
    clear(item.product.words);
    clear(item.product.words_after);
    item.product.inspected.reset();
    item.entry.key = {};
    item.fault = nullptr;
}

} // namespace

EntryStream::EntryStream(Source &source, InputMeter &meter, const CodecSetup &setup, unsigned jobs,
                         Work work, std::function<void()> before_wait)
    : source_(source), meter_(meter), setup_(setup), jobs_(jobs), work_(std::move(work)),
      before_wait_(std::move(before_wait)), codec_(setup_),
      ring_(jobs > 1 ? jobs * batches_per_job : 1) {}

EntryStream::~EntryStream() {
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    unworked_.notify_all();
    for (std::thread &thread : threads_) {
        thread.join();
    }
}

/// The source's next, which may wait for input if `wait`.
bool EntryStream::read(Entry &entry, bool wait) {
    meter_.may_wait = false;
    try {
        return source_.next(entry);
    } catch (const InputPauses &) {
        if (!wait) {
            throw;
        }
    }
    before_wait_();
    meter_.may_wait = true;
    return source_.next(entry);
}

/// Reads until the batch is full or the input pauses; waits for the first entry at
/// most, and only if `wait`.
void EntryStream::fill(Batch &batch, bool wait) {
    batch.count = 0;
    batch.done = false;
    std::size_t bytes = 0;
    while (!ended_ && batch.count < batch_entries && bytes < batch_bytes) {
        if (batch.count == batch.items.size()) {
            batch.items.emplace_back();
        }
        Item &item = batch.items[batch.count];
        reset(item);
        try {
            if (!read(item.entry, wait && batch.count == 0)) {
                ended_ = true;
                return;
            }
        } catch (const InputPauses &) {
            return;
        } catch (const DataError &) {
            item.fault = std::current_exception();
        } catch (...) { // told after what came before it
            ended_ = true;
            item.fault = std::current_exception();
        }
        bytes += item.entry.text.size() + item.entry.encoding.size();
        ++batch.count;
    }
}

/// Has the codec look at the texts of the batch together, those of its first schema.
void EntryStream::look_ahead(Codec &codec, Batch &batch) {
    batch.texts.clear();
    Schema schema = Schema::base;
    for (std::size_t i = 0; i < batch.count; ++i) {
        const Entry &entry = batch.items[i].entry;
        if (!batch.items[i].fault && entry.format == Format::json &&
            (batch.texts.empty() || entry.schema == schema)) {
            schema = entry.schema;
            batch.texts.push_back(entry.text);
        }
    }
    codec.look_ahead(schema, batch.texts);
}

void EntryStream::work_on(Codec &codec, Batch &batch) const {
    std::exception_ptr blind;
    try {
        look_ahead(codec, batch);
    } catch (...) {
        blind = std::current_exception();
    }
    for (std::size_t i = 0; i < batch.count; ++i) {
        Item &item = batch.items[i];
        if (blind && !item.fault) {
            item.fault = blind;
        }
        if (item.fault) {
            continue;
        }
        try {
            work_(codec, item.entry, item.product);
        } catch (...) {
            item.fault = std::current_exception();
        }
    }
    codec.look_ahead(Schema::base, {}); // the texts are gone before long
}

/// Works on the next batch that no one has taken; false when there is none.
bool EntryStream::take_batch(Codec &codec, std::unique_lock<std::mutex> &lock) {
    if (taken_ == read_) {
        return false;
    }
    Batch &mine = batch(taken_++);
    lock.unlock();
    work_on(codec, mine);
    lock.lock();
    mine.done = true;
    return true;
}

/// What the other threads do.
void EntryStream::help() {
    const SignalStack stack;
    std::unique_ptr<Codec> codec;
    std::exception_ptr failure;
    try {
        codec = std::make_unique<Codec>(setup_);
    } catch (...) {
        failure = std::current_exception();
    }
    std::unique_lock lock(mutex_);
    if (failure) {
        failure_ = failure;
    }
    while (codec && !stop_) {
        if (take_batch(*codec, lock)) {
            done_.notify_one();
        } else {
            unworked_.wait(lock);
        }
    }
}

void EntryStream::start_thread() {
    try {
        const SignalsHeld held; // in the new thread, for good
        threads_.emplace_back(&EntryStream::help, this);
    } catch (const std::system_error &) { // the system has no more of them; fewer do as well
        jobs_ = static_cast<unsigned>(threads_.size()) + 1;
    }
}

void EntryStream::read_ahead(std::unique_lock<std::mutex> &lock) {
    while (!ended_ && read_ - given_ < ring_.size()) {
        Batch &next = batch(read_);
        const bool idle = given_ == read_;
        lock.unlock(); // no other thread looks at a batch before it counts as read
        fill(next, idle);
        if (read_ >= batches_before_help && threads_.size() + 1 < jobs_) {
            start_thread();
        }
        lock.lock();
        if (next.count == 0) {
            return; // at the end, or it pauses
        }
        ++read_;
        unworked_.notify_one();
    }
}

EntryStream::Item *EntryStream::next() {
    if (current_ != nullptr && at_ < current_->count) {
        return &current_->items[at_++];
    }
    std::unique_lock lock(mutex_);
    if (std::exchange(current_, nullptr) != nullptr) {
        ++given_;
    }
    for (;;) {
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        read_ahead(lock);
        if (given_ == read_) {
            return nullptr;
        }
        if (batch(given_).done) {
            break;
        }
        if (!take_batch(codec_, lock)) {
            done_.wait(lock);
        }
    }
    current_ = &batch(given_);
    at_ = 1;
    return current_->items.data();
}

} // namespace aceconv
