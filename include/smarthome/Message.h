// The record passed to a handler's callback. Owned through std::unique_ptr from the moment
// it is obtained until the callback lets it go; never pooled or recycled.
// Thread-safety: a plain record; owned by one thread at a time.
#pragma once

#include <memory>

namespace smarthome {

struct Message {
    explicit Message(int what, int arg1 = -1, int arg2 = -1, std::shared_ptr<void> data = nullptr,
                     void* obj = nullptr)
        : data(std::move(data)), obj(obj), what(what), arg1(arg1), arg2(arg2) {}

    std::shared_ptr<void> data;  // payload whose lifetime the message shares
    void* obj;                   // passed along, never owned
    int what;                    // code chosen by the receiving component
    int arg1;                    // -1 when not given
    int arg2;                    // -1 when not given
};

}  // namespace smarthome
