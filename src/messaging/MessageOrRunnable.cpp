#include "smarthome/MessageOrRunnable.h"

#include <utility>

#include "smarthome/Handler.h"

namespace smarthome {

namespace {

std::shared_ptr<std::atomic<bool>> sentinelOf(Handler* handler) {
    return handler != nullptr ? handler->getValiditySentinel() : nullptr;
}

}  // namespace

MessageOrRunnable::MessageOrRunnable(std::unique_ptr<Message> message, Handler* handler)
    : impl{std::move(message), nullptr, handler, sentinelOf(handler), nullptr, true, false} {
    impl.sentinel = impl.validity.get();
}

MessageOrRunnable::MessageOrRunnable(std::function<void()> runnable, Handler* handler)
    : impl{nullptr, std::move(runnable), handler, sentinelOf(handler), nullptr, false, false} {
    impl.sentinel = impl.validity.get();
}

MessageOrRunnable::MessageOrRunnable(std::unique_ptr<Message> message, Handler* handler,
                                     std::atomic<bool>* borrowedSentinel)
    : impl{std::move(message), nullptr, handler, nullptr, borrowedSentinel, true, true} {}

MessageOrRunnable::MessageOrRunnable(std::function<void()> runnable, Handler* handler,
                                     std::atomic<bool>* borrowedSentinel)
    : impl{nullptr, std::move(runnable), handler, nullptr, borrowedSentinel, false, true} {}

MessageOrRunnable::~MessageOrRunnable() = default;

void MessageOrRunnable::clearPayload() {
    impl.message.reset();
    impl.runnable = nullptr;
}

void MessageOrRunnable::refill(std::unique_ptr<Message> message, Handler* handler,
                               std::atomic<bool>* borrowedSentinel) {
    impl.message = std::move(message);
    impl.handler = handler;
    impl.sentinel = borrowedSentinel;
    impl.isMsg = true;
}

void MessageOrRunnable::refill(std::function<void()> runnable, Handler* handler,
                               std::atomic<bool>* borrowedSentinel) {
    impl.runnable = std::move(runnable);
    impl.handler = handler;
    impl.sentinel = borrowedSentinel;
    impl.isMsg = false;
}

Handler* MessageOrRunnable::getHandler() const {
    return impl.handler;
}

std::function<void()> MessageOrRunnable::getRunnable() const {
    return impl.runnable;
}

std::unique_ptr<Message>& MessageOrRunnable::getMessage() const {
    return impl.message;
}

bool MessageOrRunnable::isMsg() const {
    return impl.isMsg;
}

bool MessageOrRunnable::isHandlerValid() const {
    return impl.sentinel != nullptr && impl.sentinel->load();
}

void MessageOrRunnable::run() {
    if (impl.runnable) {
        impl.runnable();
    }
}

}  // namespace smarthome
