#include "smarthome/MessageOrRunnable.h"

#include <utility>

#include "smarthome/Handler.h"

namespace smarthome {

class MessageOrRunnable::Impl {
public:
    Impl(std::unique_ptr<Message> message, std::function<void()> runnable, Handler* handler,
         bool isMsg)
        : message(std::move(message)),
          runnable(std::move(runnable)),
          handler(handler),
          validity(handler != nullptr ? handler->getValiditySentinel() : nullptr),
          isMsg(isMsg) {}

    std::unique_ptr<Message> message;
    std::function<void()> runnable;
    Handler* handler;
    std::shared_ptr<std::atomic<bool>> validity;
    bool isMsg;
};

MessageOrRunnable::MessageOrRunnable(std::unique_ptr<Message> message, Handler* handler)
    : impl(std::make_unique<Impl>(std::move(message), nullptr, handler, true)) {}

MessageOrRunnable::MessageOrRunnable(std::function<void()> runnable, Handler* handler)
    : impl(std::make_unique<Impl>(nullptr, std::move(runnable), handler, false)) {}

MessageOrRunnable::~MessageOrRunnable() = default;

Handler* MessageOrRunnable::getHandler() const {
    return impl->handler;
}

std::function<void()> MessageOrRunnable::getRunnable() const {
    return impl->runnable;
}

std::unique_ptr<Message>& MessageOrRunnable::getMessage() const {
    return impl->message;
}

bool MessageOrRunnable::isMsg() const {
    return impl->isMsg;
}

bool MessageOrRunnable::isHandlerValid() const {
    return impl->validity != nullptr && impl->validity->load();
}

void MessageOrRunnable::run() {
    if (impl->runnable) {
        impl->runnable();
    }
}

}  // namespace smarthome
