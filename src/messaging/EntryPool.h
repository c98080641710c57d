// Block storage for the queue entries a Looper's handlers send. A post then costs no heap
// allocation once the looper has warmed up, a delivered entry's storage goes back to the
// pool instead of travelling between the sending and the looper threads' allocator caches,
// and what a burst needed is given back once it has drained (trim()).
//
// Every MessageOrRunnable, from a pool or from the heap, is preceded by an EntryHeader that
// names the pool its storage belongs to (none for the heap). MessageOrRunnable's class
// operator delete reads it, so an entry may be destroyed through std::unique_ptr anywhere,
// on any thread, and its storage still returns to the right place.
//
// Ownership: owned by one looper's state, which outlives every entry taken from it.
// Thread-safety: take() and trim() are called by one thread at a time (under the looper's
// lock); give() may be called from any thread at any time.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <thread>
#include <vector>

#include "smarthome/MessageOrRunnable.h"

namespace smarthome {
namespace detail {

class EntryPool;

// Precedes every entry's storage; 16 bytes, so the entry stays aligned as malloc aligns.
struct alignas(16) EntryHeader {
    EntryPool* pool;  // null for an entry allocated on the heap
};

struct EntrySlot;

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the giving side gets its own line
class EntryPool {
public:
    static constexpr size_t kSlotsPerBlock = 64;

    EntryPool();
    ~EntryPool();
    EntryPool(const EntryPool&) = delete;
    EntryPool& operator=(const EntryPool&) = delete;

    // Storage for one MessageOrRunnable, to be built with its slot operator new.
    EntrySlot* take();
    // When every slot taken has been given back, frees the blocks beyond the first
    // keepBlocks; false (nothing freed) while some slot is in use.
    bool trim(size_t keepBlocks);
    size_t blockCount() const { return blocks.size(); }

    // The thread that delivers the entries (the looper's worker): what it gives back is
    // kept on a list of its own, without an atomic operation per entry, until it calls
    // flushDelivered(). Set before any other thread can reach the pool.
    void setDeliverer(std::thread::id id) { deliverer = id; }
    // Hands the deliverer's list to the taking side; called by the deliverer.
    void flushDelivered() noexcept;

    // Where the entry built in slot lives.
    static void* storageOf(EntrySlot* slot);
    // Storage for an entry that does not come from a pool (header marks it as heap).
    static void* allocateOnHeap(size_t size);
    // Where an entry's storage goes when it is destroyed: its pool, or the heap.
    static void release(void* entry) noexcept;

private:
    struct Block;
    void addBlock();
    void giveBack(EntrySlot* slot) noexcept;
    void pushGiven(EntrySlot* first, EntrySlot* last, size_t count) noexcept;

    // The taking side (one thread at a time).
    EntrySlot* spare = nullptr;
    size_t taken = 0;
    std::vector<std::unique_ptr<Block>> blocks;
    // The giving side, on its own cache line: mostly the looper thread, once per entry it
    // delivers, while the taking side is a sender.
    alignas(64) std::atomic<EntrySlot*> given{nullptr};  // pushed by any thread, taken at once
    std::atomic<size_t> givenCount{0};
    std::thread::id deliverer;
    EntrySlot* delivered = nullptr;  // the deliverer's own list
    EntrySlot* deliveredTail = nullptr;
    size_t deliveredCount = 0;
};

}  // namespace detail
}  // namespace smarthome
