// A hash map guarded by its own mutex: find returns (found, value) and insert refuses a
// key that is present.
// Thread-safety: every operation may be called from any thread.
#pragma once

#include <mutex>
#include <unordered_map>
#include <utility>

namespace smarthome {

template <typename Key, typename Value>
class SynchronizedHashMap {
public:
    // (true, a copy of the value) when present; (false, a value-initialised Value) else.
    std::pair<bool, Value> find(const Key& key) const {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = map_.find(key);
        if (it == map_.end()) {
            return {false, Value()};
        }
        return {true, it->second};
    }

    // False (and nothing changed) when the key is present.
    bool insert(const Key& key, const Value& value) {
        std::lock_guard<std::mutex> lock(mutex_);
        return map_.emplace(key, value).second;
    }

    size_t size() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return map_.size();
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<Key, Value> map_;
};

}  // namespace smarthome
