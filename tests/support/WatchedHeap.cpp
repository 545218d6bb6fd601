#include "support/WatchedHeap.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> taken = 0;
std::atomic<std::size_t> alive = 0;
std::size_t untilFault = 0;  // 0 for no fault to come
bool isSticky = false;
bool isHit = false;

/// Whether the allocation at hand is to fail.
bool fails() noexcept {
    if (isHit && isSticky) return true;
    if (untilFault == 0 || --untilFault > 0) return false;
    isHit = true;
    return true;
}

void* counted(void* memory) noexcept {
    ++taken;
    alive += memory == nullptr ? 0 : 1;
    return memory;
}

void* take(std::size_t size) noexcept {
    return fails() ? nullptr : counted(std::malloc(size == 0 ? 1 : size));
}

void* takeAligned(std::size_t size, std::align_val_t alignment) noexcept {
    auto const step = static_cast<std::size_t>(alignment);
    return fails() ? nullptr : counted(std::aligned_alloc(step, (size + step - 1) / step * step));
}

void giveBack(void* memory) noexcept {
    alive -= memory == nullptr ? 0 : 1;
    std::free(memory);
}

void* orThrow(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

namespace TalTest {

HeapFault::HeapFault(std::size_t number, Failing failing) {
    isHit = false;
    isSticky = failing == Failing::fromThenOn;
    untilFault = number;
}

HeapFault::~HeapFault() {
    untilFault = 0;
    isHit = false;
}

bool HeapFault::wasHit() { return isHit; }

std::size_t heapAllocations() { return taken; }

std::size_t liveAllocations() { return alive; }

}  // namespace TalTest

// All forms: a sanitizer brings its own for those that are not here.
using Alignment = std::align_val_t;
using NoThrow = std::nothrow_t;
void* operator new(std::size_t size) { return orThrow(take(size)); }
void* operator new[](std::size_t size) { return orThrow(take(size)); }
void* operator new(std::size_t size, NoThrow const&) noexcept { return take(size); }
void* operator new[](std::size_t size, NoThrow const&) noexcept { return take(size); }
void* operator new(std::size_t size, Alignment step) { return orThrow(takeAligned(size, step)); }
void* operator new[](std::size_t size, Alignment step) { return orThrow(takeAligned(size, step)); }
void* operator new(std::size_t size, Alignment step, NoThrow const&) noexcept {
    return takeAligned(size, step);
}
void* operator new[](std::size_t size, Alignment step, NoThrow const&) noexcept {
    return takeAligned(size, step);
}
void operator delete(void* memory) noexcept { giveBack(memory); }
void operator delete[](void* memory) noexcept { giveBack(memory); }
void operator delete(void* memory, NoThrow const&) noexcept { giveBack(memory); }
void operator delete[](void* memory, NoThrow const&) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t) noexcept { giveBack(memory); }
void operator delete[](void* memory, std::size_t) noexcept { giveBack(memory); }
void operator delete(void* memory, Alignment) noexcept { giveBack(memory); }
void operator delete[](void* memory, Alignment) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t, Alignment) noexcept { giveBack(memory); }
void operator delete[](void* memory, std::size_t, Alignment) noexcept { giveBack(memory); }
void operator delete(void* memory, Alignment, NoThrow const&) noexcept { giveBack(memory); }
void operator delete[](void* memory, Alignment, NoThrow const&) noexcept { giveBack(memory); }
