// A message loop: one worker thread serving an immediate queue in order and a list of
// delayed entries that join the queue when they fall due. Entries are delivered to the
// Handler that posted them, on the worker thread, one at a time.
//
// Ordering guarantees:
//  - Entries sent to the back run in sending order; an entry sent to the front runs
//    before everything queued, including earlier front insertions.
//  - Delayed entries that fall due in the same pass join the back of the queue in posting
//    order (not due-time order), behind what was queued already. A zero delay is an
//    immediate send to the back; a negative delay runs on the next pass.
//  - With nothing delayed the worker sleeps up to 30 minutes, woken by a send, a flush or
//    a quit; otherwise until the earliest entry is due, rounded up by one millisecond.
//  - flush() returns once every entry queued before it (and every delayed entry due by
//    then) has run; called on the worker thread it returns at once.
//  - quitSafely() refuses new work at once, delivers accepted work that is due, discards
//    delayed work not yet due, and returns when the worker has finished.
//  - Entries whose handler is gone (validity sentinel false) or absent are dropped.
//
// Memory: once a burst has been delivered and the looper has then been idle for 50 ms, it
// gives back the entry storage and container capacity the burst needed beyond what about
// a thousand pending entries take.
// If its thread cannot be created, the constructor logs
// "Looper:event=workerNotStarted,reason=<why>" at error level and the looper starts out
// stopped: every send answers false.
//
// Ownership: always owned by std::shared_ptr (create<>()); owns its entries. Releasing
// the last owner stops and joins the worker; if that happens on the worker thread itself
// (from a callback), the worker is told to quit and finishes on its own afterwards.
// Thread-safety: every operation may be called from any thread. Predicates given to
// hasMessages() and remove() run under the looper's lock and must not call back into it.
// Callbacks must not throw.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

#include "smarthome/MessageOrRunnable.h"

namespace smarthome {

class Looper : public std::enable_shared_from_this<Looper> {
public:
    using Predicate = std::function<bool(const std::unique_ptr<MessageOrRunnable>&)>;

    template <typename T = Looper, typename... Args>
    static std::shared_ptr<T> create(Args&&... args) {
        return std::shared_ptr<T>(new T(std::forward<Args>(args)...));
    }

    virtual ~Looper();
    Looper(const Looper&) = delete;
    Looper& operator=(const Looper&) = delete;

    // A shared pointer to this looper; throws std::bad_weak_ptr if it is not owned by one.
    std::shared_ptr<Looper> get();

    // Each send takes the entry; false (and the entry destroyed) once stopping.
    bool sendMessageOrRunnable(std::unique_ptr<MessageOrRunnable> entry);
    bool sendMessageOrRunnableToFront(std::unique_ptr<MessageOrRunnable> entry);
    bool sendDelayedMessageOrRunnable(std::unique_ptr<MessageOrRunnable> entry,
                                      std::chrono::milliseconds delay);

    // Whether predicate accepts an entry of the queue or the delayed list; false once
    // stopping.
    bool hasMessages(const Predicate& predicate) const;
    bool hasAnyMessages() const;
    // Destroys, unprocessed, every entry the predicate accepts, keeping the others' order.
    void remove(const Predicate& predicate);

    void flush();
    void quitSafely();

protected:
    Looper();

private:
    friend class Handler;
    enum class Position { Back, Front };
    // A handler's own sends. The entry borrows the handler's sentinel and is inserted only
    // while that sentinel holds true, checked under the lock; immediate entries are built
    // in the looper's entry storage. Same results as the public sends.
    bool sendFromHandler(std::unique_ptr<Message>&& message, Handler* handler,
                         std::atomic<bool>* sentinel, Position position);
    bool sendFromHandler(std::function<void()>&& runnable, Handler* handler,
                         std::atomic<bool>* sentinel, Position position);
    bool sendDelayedFromHandler(std::unique_ptr<Message>&& message, Handler* handler,
                                std::atomic<bool>* sentinel, std::chrono::milliseconds delay);
    bool sendDelayedFromHandler(std::function<void()>&& runnable, Handler* handler,
                                std::atomic<bool>* sentinel, std::chrono::milliseconds delay);
    // A departing handler, in one step under the lock: clears its sentinel and destroys its
    // pending entries, so that none can be added afterwards. The sentinel is kept until the
    // pass in progress (if any) has ended: entries of that pass may still read it.
    void detach(const Handler* handler, std::shared_ptr<std::atomic<bool>> sentinel);

    struct State;
    std::shared_ptr<State> state;
};

}  // namespace smarthome
