#include "smarthome/MessageOrRunnable.h"

#include <utility>

#include "messaging/EntryPool.h"
#include "smarthome/Handler.h"

namespace smarthome {

namespace {

std::shared_ptr<std::atomic<bool>> sentinelOf(Handler* handler) {
    return handler != nullptr ? handler->getValiditySentinel() : nullptr;
}

}  // namespace

MessageOrRunnable::MessageOrRunnable(std::unique_ptr<Message> message, Handler* handler)
    : impl{std::move(message), nullptr, handler, sentinelOf(handler), nullptr, true} {
    impl.sentinel = impl.validity.get();
}

MessageOrRunnable::MessageOrRunnable(std::function<void()> runnable, Handler* handler)
    : impl{nullptr, std::move(runnable), handler, sentinelOf(handler), nullptr, false} {
    impl.sentinel = impl.validity.get();
}

MessageOrRunnable::MessageOrRunnable(std::unique_ptr<Message>&& message, Handler* handler,
                                     std::atomic<bool>* borrowedSentinel)
    : impl{std::move(message), nullptr, handler, nullptr, borrowedSentinel, true} {}

MessageOrRunnable::MessageOrRunnable(std::function<void()>&& runnable, Handler* handler,
                                     std::atomic<bool>* borrowedSentinel)
    : impl{nullptr, std::move(runnable), handler, nullptr, borrowedSentinel, false} {}

MessageOrRunnable::~MessageOrRunnable() = default;

void* MessageOrRunnable::operator new(std::size_t size) {
    return detail::EntryPool::allocateOnHeap(size);
}

void* MessageOrRunnable::operator new(std::size_t size, detail::EntrySlot* slot) noexcept {
    static_cast<void>(size);
    return detail::EntryPool::storageOf(slot);
}

void MessageOrRunnable::operator delete(void* entry) noexcept {
    detail::EntryPool::release(entry);
}

void MessageOrRunnable::operator delete(void* entry, detail::EntrySlot* slot) noexcept {
    static_cast<void>(slot);
    detail::EntryPool::release(entry);  // a constructor threw: the slot goes back
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
