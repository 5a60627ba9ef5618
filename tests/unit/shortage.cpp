#include "shortage.h"

#include <new>

namespace {

/// Negative: none fails.
thread_local int failingAllocation = -1;

template <class Allocate>
void* allocate(Allocate how) noexcept {
    if (failingAllocation >= 0 && failingAllocation-- == 0) return nullptr;
    try {
        return how();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

FailAllocation::FailAllocation(int number) {
    failingAllocation = number;
}
FailAllocation::~FailAllocation() {
    failingAllocation = -1;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate([size] { return ::operator new(size); });
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate([size] { return ::operator new[](size); });
}
