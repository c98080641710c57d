#include "smarthome/Handler.h"

#include <utility>

namespace smarthome {

Handler::Handler(const Callback& callback) : Handler(nullptr, callback) {}

Handler::Handler(const std::shared_ptr<Looper>& looper, const Callback& callback)
    : callback(std::make_shared<const Callback>(callback)),
      looper(looper != nullptr ? looper : Looper::create<>()),
      sentinel(std::make_shared<std::atomic<bool>>(true)) {}

Handler::~Handler() {
    // Clears the sentinel (entries already taken into the looper's current batch are
    // skipped from now on) and withdraws this handler's entries in one step, so that a
    // callback of this handler still running on the looper thread cannot add one after.
    looper->detach(this, sentinel);
    quitSafely();
}

std::unique_ptr<Message> Handler::obtainMessage(int what) const {
    return std::make_unique<Message>(what);
}
std::unique_ptr<Message> Handler::obtainMessage(int what, int arg1, int arg2) const {
    return std::make_unique<Message>(what, arg1, arg2);
}
std::unique_ptr<Message> Handler::obtainMessage(int what, int arg1, int arg2,
                                                std::shared_ptr<void> data) const {
    return std::make_unique<Message>(what, arg1, arg2, std::move(data));
}
std::unique_ptr<Message> Handler::obtainMessage(int what, std::shared_ptr<void> data) const {
    return std::make_unique<Message>(what, -1, -1, std::move(data));
}
std::unique_ptr<Message> Handler::obtainMessage(int what, int arg1, int arg2, void* obj) const {
    return std::make_unique<Message>(what, arg1, arg2, nullptr, obj);
}
std::unique_ptr<Message> Handler::obtainMessage(int what, void* obj) const {
    return std::make_unique<Message>(what, -1, -1, nullptr, obj);
}
std::unique_ptr<Message> Handler::obtainMessage(int what, void* obj,
                                                std::shared_ptr<void> data) const {
    return std::make_unique<Message>(what, -1, -1, std::move(data), obj);
}

bool Handler::sendEmptyMessage(int what) {
    return sendMessage(obtainMessage(what));
}

bool Handler::sendMessage(std::unique_ptr<Message> message) {
    return !quitting.load() && looper->sendFromHandler(std::move(message), this, sentinel.get(),
                                                       Looper::Position::Back);
}

bool Handler::sendEmptyMessageDelayed(int what, std::chrono::milliseconds delay) {
    return sendMessageDelayed(obtainMessage(what), delay);
}

bool Handler::sendMessageDelayed(std::unique_ptr<Message> message,
                                 std::chrono::milliseconds delay) {
    return !quitting.load() &&
           looper->sendDelayedFromHandler(std::move(message), this, sentinel.get(), delay);
}

bool Handler::sendMessageAtFrontOfQueue(std::unique_ptr<Message> message) {
    return !quitting.load() && looper->sendFromHandler(std::move(message), this, sentinel.get(),
                                                       Looper::Position::Front);
}

bool Handler::post(std::function<void()> runnable) {
    return !quitting.load() && looper->sendFromHandler(std::move(runnable), this, sentinel.get(),
                                                       Looper::Position::Back);
}

bool Handler::postDelayed(std::function<void()> runnable, std::chrono::milliseconds delay) {
    return !quitting.load() &&
           looper->sendDelayedFromHandler(std::move(runnable), this, sentinel.get(), delay);
}

Handler::Matcher Handler::getMatcherForMsgsWithCodeWhat(int what) const {
    const Handler* self = this;
    return [self, what](const std::unique_ptr<MessageOrRunnable>& entry) {
        return entry->getHandler() == self && entry->isMsg() && entry->getMessage() != nullptr &&
               entry->getMessage()->what == what;
    };
}

Handler::Matcher Handler::getMatcherForMsgsWithCodeWhatAndObj(int what, void* obj) const {
    const Handler* self = this;
    return [self, what, obj](const std::unique_ptr<MessageOrRunnable>& entry) {
        return entry->getHandler() == self && entry->isMsg() && entry->getMessage() != nullptr &&
               entry->getMessage()->what == what && entry->getMessage()->data.get() == obj;
    };
}

bool Handler::hasMessages(int what) const {
    return !quitting.load() && looper->hasMessages(getMatcherForMsgsWithCodeWhat(what));
}

bool Handler::hasMessages(int what, void* obj) const {
    return !quitting.load() && looper->hasMessages(getMatcherForMsgsWithCodeWhatAndObj(what, obj));
}

void Handler::removeMessages(int what) {
    if (!quitting.load()) {
        looper->remove(getMatcherForMsgsWithCodeWhat(what));
    }
}

void Handler::removeMessages(int what, void* obj) {
    if (!quitting.load()) {
        looper->remove(getMatcherForMsgsWithCodeWhatAndObj(what, obj));
    }
}

void Handler::removeCallbacksAndMessages() {
    if (!quitting.load()) {
        removeCallbacksAndMessagesHelper();
    }
}

void Handler::removeCallbacksAndMessagesHelper() {
    const Handler* self = this;
    looper->remove([self](const std::unique_ptr<MessageOrRunnable>& entry) {
        return entry->getHandler() == self;
    });
}

std::shared_ptr<std::atomic<bool>> Handler::getValiditySentinel() const {
    return sentinel;
}

std::shared_ptr<Looper> Handler::getLooper() const {
    return looper;
}

// The entry is destroyed when this returns; the callback or closure may destroy this
// handler, so nothing here touches it afterwards.
void Handler::processHandlerMessage(std::unique_ptr<MessageOrRunnable> entry) {
    if (entry == nullptr || quitting.load()) {
        return;
    }
    if (entry->isMsg()) {
        std::shared_ptr<const Callback> running = callback;  // this handler may die inside
        (*running)(std::move(entry->getMessage()));
    } else {
        entry->run();
    }
}

void Handler::quitSafely() {
    if (quitting.exchange(true)) {
        return;
    }
    removeCallbacksAndMessagesHelper();
    looper->flush();
}

}  // namespace smarthome
