// A component's mailbox on a Looper: builds messages, sends them now, later or to the front
// of the queue, posts closures, asks for and withdraws pending messages. Everything it sends
// runs on the looper's thread, one entry at a time, through its callback.
//
// Ownership: shares its looper (a handler built without one creates its own, and so its
// own thread); entries refer to it only through its validity sentinel.
// Thread-safety: sends, queries and removes may be called from any thread. The callback
// runs on the looper thread. The destructor may run on any thread: off the looper thread
// it returns only after a running callback of this handler has finished; on the looper
// thread (from its own callback) it returns at once and its remaining entries are skipped.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

#include "smarthome/Looper.h"
#include "smarthome/Message.h"
#include "smarthome/MessageOrRunnable.h"

namespace smarthome {

class Handler {
public:
    using Callback = std::function<void(std::unique_ptr<Message>)>;
    using Matcher = std::function<bool(const std::unique_ptr<MessageOrRunnable>&)>;

    explicit Handler(const Callback& callback);
    // An empty looper pointer creates a new looper.
    Handler(const std::shared_ptr<Looper>& looper, const Callback& callback);
    virtual ~Handler();
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    // New messages; fields not given keep their defaults (arg1 and arg2 -1).
    std::unique_ptr<Message> obtainMessage(int what) const;
    std::unique_ptr<Message> obtainMessage(int what, int arg1, int arg2) const;
    std::unique_ptr<Message> obtainMessage(int what, int arg1, int arg2,
                                           std::shared_ptr<void> data) const;
    std::unique_ptr<Message> obtainMessage(int what, std::shared_ptr<void> data) const;
    std::unique_ptr<Message> obtainMessage(int what, int arg1, int arg2, void* obj) const;
    std::unique_ptr<Message> obtainMessage(int what, void* obj) const;
    std::unique_ptr<Message> obtainMessage(int what, void* obj, std::shared_ptr<void> data) const;

    // Each returns true when the looper accepted the entry; false when this handler is
    // quitting or the looper stopping. The message or closure is consumed either way.
    bool sendEmptyMessage(int what);
    bool sendMessage(std::unique_ptr<Message> message);
    bool sendEmptyMessageDelayed(int what, std::chrono::milliseconds delay);
    bool sendMessageDelayed(std::unique_ptr<Message> message, std::chrono::milliseconds delay);
    bool sendMessageAtFrontOfQueue(std::unique_ptr<Message> message);
    bool post(std::function<void()> runnable);
    bool postDelayed(std::function<void()> runnable, std::chrono::milliseconds delay);

    // Accepts this handler's messages (not closures) with code what.
    Matcher getMatcherForMsgsWithCodeWhat(int what) const;
    // As above, and the message's shared data (not its obj field) is obj.
    Matcher getMatcherForMsgsWithCodeWhatAndObj(int what, void* obj) const;
    bool hasMessages(int what) const;
    bool hasMessages(int what, void* obj) const;
    void removeMessages(int what);
    void removeMessages(int what, void* obj);
    void removeCallbacksAndMessages();

    std::shared_ptr<std::atomic<bool>> getValiditySentinel() const;
    std::shared_ptr<Looper> getLooper() const;
    // Called by the looper thread for each valid entry of this handler.
    void processHandlerMessage(std::unique_ptr<MessageOrRunnable> entry);
    // Withdraws this handler's pending entries and waits for a running callback; afterwards
    // every operation is a no-op. The looper goes on serving other handlers.
    void quitSafely();

private:
    void removeCallbacksAndMessagesHelper();

    // Shared so that a callback that destroys its own handler keeps running on a live
    // function object.
    std::shared_ptr<const Callback> callback;
    std::shared_ptr<Looper> looper;
    std::atomic<bool> quitting{false};
    std::shared_ptr<std::atomic<bool>> sentinel;
};

}  // namespace smarthome
