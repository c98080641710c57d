// One queue entry of a Looper: a Message or a closure, tagged with the Handler that posted
// it and a copy of that handler's validity sentinel, so that an entry outliving its
// handler can tell without touching it.
// Ownership: owns its message or closure; does not own the handler.
// Thread-safety: used by one thread at a time (the queue's lock or the looper thread).
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "smarthome/Message.h"

namespace smarthome {

class Handler;

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

private:
    friend class Handler;
    friend class Looper;
    // Entries a Handler creates for itself borrow its sentinel instead of sharing it: the
    // handler keeps the sentinel alive until no pass can still deliver them (see
    // Looper::retire), which spares every entry two reference-count updates on a cache line
    // that the sending and the looper threads would otherwise pass back and forth.
    MessageOrRunnable(std::unique_ptr<Message> message, Handler* handler,
                      std::atomic<bool>* borrowedSentinel);
    MessageOrRunnable(std::function<void()> runnable, Handler* handler,
                      std::atomic<bool>* borrowedSentinel);

    // A delivered entry of a handler can be refilled by its looper instead of being freed
    // and allocated again: the storage then stays with the looper thread and its senders
    // rather than crossing between their allocator caches on every message. Entries built
    // through the public constructors (possibly of a derived type) are never reused.
    bool isReusable() const { return impl.reusable; }
    void clearPayload();
    void refill(std::unique_ptr<Message> message, Handler* handler,
                std::atomic<bool>* borrowedSentinel);
    void refill(std::function<void()> runnable, Handler* handler,
                std::atomic<bool>* borrowedSentinel);

    // The entry's state, held inline so that an entry costs one allocation.
    struct Impl {
        std::unique_ptr<Message> message;
        std::function<void()> runnable;
        Handler* handler;
        std::shared_ptr<std::atomic<bool>> validity;  // empty when borrowed
        std::atomic<bool>* sentinel;                  // the one read at delivery
        bool isMsg;
        bool reusable;
    };
    mutable Impl impl;  // getMessage() const lets processing move the message out
};

}  // namespace smarthome
