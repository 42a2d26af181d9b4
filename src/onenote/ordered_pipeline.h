// Work over a sequence of items on worker threads, its results taken in item order on the calling
// thread: pages parsed while the calling thread fetches and binds others, pages serialised while
// it sends others to OneNote.
//
// The calling thread hands out the items (`source`, called in item order, on the calling thread
// only, never more than `window` items ahead of the item last taken); workers turn each item into
// its result (`work`, which runs on any worker, several at once, and so must touch nothing but its
// item and what no other thread changes meanwhile); Next() gives the results in item order, on the
// calling thread. An exception that the source or the work raised for an item is raised by Next()
// at that item, as if the calling thread had done the work itself. Once the source fails no
// further item is handed out; items handed out before a failure came to light (ahead of the
// failed one) are dropped, results and all, when the pipeline goes.
//
// With no worker threads (a machine with one core) or fewer than two items nothing runs on
// another thread: Next() calls the source and the work itself.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace qm::onenote {

// The worker threads a pipeline uses by default: one per core, at most a handful; none on a
// machine with one core.
inline unsigned DefaultWorkers() {
    constexpr unsigned kMaxWorkers = 4;
    const unsigned cores = std::thread::hardware_concurrency();
    return cores <= 1 ? 0 : std::min(cores, kMaxWorkers);
}

template <class In, class Out>
class OrderedPipeline {
public:
    using Source = std::function<In(std::size_t index)>;
    using Work = std::function<Out(In item)>;

    // `window` 0: twice the workers.
    OrderedPipeline(std::size_t count, Source source, Work work, unsigned workers = DefaultWorkers(),
                    std::size_t window = 0)
        : count_(count),
          source_(std::move(source)),
          work_(std::move(work)),
          window_(std::max<std::size_t>(window != 0 ? window : 2 * std::size_t{workers}, 1)) {
        if (count_ < 2) return;
        slots_.resize(window_);
        const std::size_t threads = std::min<std::size_t>(workers, count_);
        try {
            for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this] { Serve(); });
        } catch (const std::system_error&) {
            // No more threads to be had: the ones started serve alone, or, with none, Next() works.
        }
    }

    OrderedPipeline(const OrderedPipeline&) = delete;
    OrderedPipeline& operator=(const OrderedPipeline&) = delete;

    // Waits for the workers to finish the items they hold; the other results are dropped.
    ~OrderedPipeline() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        workReady_.notify_all();
        for (std::thread& thread : threads_) thread.join();
    }

    // The result of the next item. Call it at most `count` times, and not again after it raised.
    Out Next() {
        if (threads_.empty()) return work_(source_(taken_++));
        HandOut();
        std::unique_lock lock(mutex_);
        if (taken_ == handedOut_) {
            // The source failed for this item.
            ++taken_;
            std::rethrow_exception(sourceError_);
        }
        Slot& slot = slots_[taken_ % window_];
        resultReady_.wait(lock, [&] { return slot.done; });
        ++taken_;
        slot.done = false;
        const std::exception_ptr error = std::exchange(slot.error, nullptr);
        std::optional<Out> result = std::exchange(slot.result, std::nullopt);
        lock.unlock();
        if (error) std::rethrow_exception(error);
        return std::move(*result);
    }

private:
    struct Slot {
        std::optional<In> item;  // handed out, not yet taken by a worker
        std::optional<Out> result;
        std::exception_ptr error;
        bool done = false;
    };

    // Fills the window. The source runs on the calling thread, outside the lock.
    void HandOut() {
        while (!sourceError_ && handedOut_ < count_ && handedOut_ - taken_ < window_) {
            std::optional<In> item;
            try {
                item.emplace(source_(handedOut_));
            } catch (...) {
                sourceError_ = std::current_exception();
                return;
            }
            {
                const std::lock_guard lock(mutex_);
                slots_[handedOut_ % window_].item = std::move(item);
                ++handedOut_;
            }
            workReady_.notify_one();
        }
    }

    // A worker: takes the items in order, one at a time, until the pipeline goes.
    void Serve() {
        std::unique_lock lock(mutex_);
        for (;;) {
            workReady_.wait(lock, [&] { return stopping_ || started_ < handedOut_; });
            if (stopping_) return;
            Slot& slot = slots_[started_++ % window_];
            std::optional<In> item = std::exchange(slot.item, std::nullopt);
            lock.unlock();
            std::optional<Out> result;
            std::exception_ptr error;
            try {
                result.emplace(work_(std::move(*item)));
            } catch (...) {
                error = std::current_exception();
            }
            item.reset();
            lock.lock();
            slot.result = std::move(result);
            slot.error = std::move(error);
            slot.done = true;
            resultReady_.notify_one();
        }
    }

    const std::size_t count_;
    const Source source_;
    const Work work_;
    const std::size_t window_;
    // Item i waits in slots_[i % window_] from being handed out until it is taken.
    std::vector<Slot> slots_;
    // Written by the calling thread only; handedOut_ under the lock, as the workers read it.
    std::size_t handedOut_ = 0;
    std::size_t taken_ = 0;
    std::exception_ptr sourceError_;
    // Under the lock.
    std::size_t started_ = 0;
    bool stopping_ = false;
    std::mutex mutex_;
    std::condition_variable workReady_;
    std::condition_variable resultReady_;
    std::vector<std::thread> threads_;
};

}  // namespace qm::onenote
