// One immediate task of a TaskExecutor: a message for the executor's callback or a
// closure, with its id and the cancellation flag it shares with the executor's index.
//
// Ownership: owned by std::unique_ptr, by the executor's queue until the draining job
// takes it. Thread-safety: a plain record, used by one thread at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "smarthome/CancellationFlag.h"
#include "smarthome/Message.h"
#include "smarthome/TaskExecutor.h"

namespace smarthome {

class TaskExecutor::Task {
public:
    Task(uint64_t taskId, std::shared_ptr<CancellationFlag> cancellationFlag,
         std::unique_ptr<Message> message, std::function<void()> closure, bool isMessage)
        : taskId(taskId),
          cancellationFlag(std::move(cancellationFlag)),
          message(std::move(message)),
          closure(std::move(closure)),
          isMessage(isMessage) {}

    uint64_t taskId;
    std::shared_ptr<CancellationFlag> cancellationFlag;
    std::unique_ptr<Message> message;  // set for a message task
    std::function<void()> closure;     // set for a closure task
    bool isMessage;
};

}  // namespace smarthome
