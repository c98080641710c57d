#include "messaging/EntryPool.h"

#include <cstdint>
#include <new>

namespace smarthome {
namespace detail {

// A slot: the header, then room for one entry (or, while spare, the link to the next).
struct alignas(16) EntrySlot {
    EntryHeader header;
    union {
        EntrySlot* next;
        alignas(16) unsigned char storage[sizeof(MessageOrRunnable)];
    };
};
static_assert(offsetof(EntrySlot, storage) == sizeof(EntryHeader),
              "an entry's header sits right before it");

struct EntryPool::Block {
    EntrySlot slots[kSlotsPerBlock];
};

EntryPool::EntryPool() = default;

// Every entry has been destroyed by now: the looper's state, which owns the pool, goes
// only after its queues are empty and its worker has ended.
EntryPool::~EntryPool() = default;

void EntryPool::addBlock() {
    std::unique_ptr<Block> block(new Block);  // default-initialised: nothing to zero
    for (EntrySlot& slot : block->slots) {
        slot.header.pool = this;
        slot.next = spare;
        spare = &slot;
    }
    blocks.push_back(std::move(block));
}

EntrySlot* EntryPool::take() {
    if (spare == nullptr) {
        spare = given.exchange(nullptr, std::memory_order_acquire);
        if (spare == nullptr) {
            addBlock();
        }
    }
    EntrySlot* slot = spare;
    spare = slot->next;
    ++taken;
    return slot;
}

void EntryPool::giveBack(EntrySlot* slot) noexcept {
    if (std::this_thread::get_id() == deliverer) {
        slot->next = delivered;
        delivered = slot;
        if (deliveredTail == nullptr) {
            deliveredTail = slot;
        }
        ++deliveredCount;
        return;
    }
    pushGiven(slot, slot, 1);
}

void EntryPool::flushDelivered() noexcept {
    if (delivered == nullptr) {
        return;
    }
    pushGiven(delivered, deliveredTail, deliveredCount);
    delivered = nullptr;
    deliveredTail = nullptr;
    deliveredCount = 0;
}

void EntryPool::pushGiven(EntrySlot* first, EntrySlot* last, size_t count) noexcept {
    EntrySlot* head = given.load(std::memory_order_relaxed);
    do {
        last->next = head;
    } while (!given.compare_exchange_weak(head, first, std::memory_order_release,
                                          std::memory_order_relaxed));
    // After the push: a trim that finds every slot given back finds each on a list.
    givenCount.fetch_add(count, std::memory_order_release);
}

bool EntryPool::trim(size_t keepBlocks) {
    if (blocks.size() <= keepBlocks) {
        return true;
    }
    if (givenCount.load(std::memory_order_acquire) != taken) {
        return false;
    }
    // Every slot is spare: keep the first blocks, rebuild the list from them alone.
    given.store(nullptr, std::memory_order_relaxed);
    spare = nullptr;
    blocks.resize(keepBlocks);
    for (auto& block : blocks) {
        for (EntrySlot& slot : block->slots) {
            slot.next = spare;
            spare = &slot;
        }
    }
    return true;
}

void* EntryPool::storageOf(EntrySlot* slot) {
    return slot->storage;
}

void* EntryPool::allocateOnHeap(size_t size) {
    auto* header = static_cast<EntryHeader*>(::operator new(sizeof(EntryHeader) + size));
    header->pool = nullptr;
    return header + 1;
}

void EntryPool::release(void* entry) noexcept {
    if (entry == nullptr) {
        return;
    }
    EntryHeader* header = static_cast<EntryHeader*>(entry) - 1;
    if (header->pool == nullptr) {
        ::operator delete(header);
        return;
    }
    header->pool->giveBack(reinterpret_cast<EntrySlot*>(header));
}

}  // namespace detail
}  // namespace smarthome
