// One queue entry of a Looper: a Message or a closure, tagged with the Handler that posted
// it and a copy of that handler's validity sentinel, so that an entry outliving its
// handler can tell without touching it.
// Ownership: owns its message or closure; does not own the handler. Entries a Handler sends
// may live in their looper's block storage: allocation and deallocation go through the
// class's own operator new and delete, so an entry may be destroyed through
// std::unique_ptr wherever it is and its storage still returns to where it came from.
// Thread-safety: used by one thread at a time (the queue's lock or the looper thread).
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>

#include "smarthome/Message.h"

namespace smarthome {

class Handler;
namespace detail {
struct EntrySlot;
}  // namespace detail

class MessageOrRunnable {
public:
    MessageOrRunnable(std::unique_ptr<Message> message, Handler* handler);
    MessageOrRunnable(std::function<void()> runnable, Handler* handler);
    virtual ~MessageOrRunnable();
    MessageOrRunnable(const MessageOrRunnable&) = delete;
    MessageOrRunnable& operator=(const MessageOrRunnable&) = delete;

    Handler* getHandler() const;
    // A copy of the closure (empty for a message entry).
    std::function<void()> getRunnable() const;
    // The message inside, so that processing can move it out.
    std::unique_ptr<Message>& getMessage() const;
    bool isMsg() const;
    // False without a sentinel (no handler); otherwise the sentinel's current value.
    bool isHandlerValid() const;
    // Runs the closure in place (no copy).
    void run();

    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, detail::EntrySlot* slot) noexcept;
    static void operator delete(void* entry) noexcept;
    static void operator delete(void* entry, detail::EntrySlot* slot) noexcept;

private:
    friend class Looper;
    // Entries a Handler sends for itself borrow its sentinel instead of sharing it, which
    // spares every post two reference-count updates on a cache line that the sending and
    // the looper threads would otherwise pass back and forth. This is safe because the
    // looper inserts such an entry only while the sentinel holds true, checked under its
    // lock, and the handler's destructor clears the sentinel and withdraws its entries in
    // one step under that lock; the sentinel itself is kept until the pass that may still
    // read it has ended.
    MessageOrRunnable(std::unique_ptr<Message>&& message, Handler* handler,
                      std::atomic<bool>* borrowedSentinel);
    MessageOrRunnable(std::function<void()>&& runnable, Handler* handler,
                      std::atomic<bool>* borrowedSentinel);

    // The entry's state, held inline so that an entry costs one allocation.
    struct Impl {
        std::unique_ptr<Message> message;
        std::function<void()> runnable;
        Handler* handler;
        std::shared_ptr<std::atomic<bool>> validity;  // empty when borrowed
        std::atomic<bool>* sentinel;                  // the one read at delivery
        bool isMsg;
    };
    mutable Impl impl;  // getMessage() const lets processing move the message out
};

}  // namespace smarthome
