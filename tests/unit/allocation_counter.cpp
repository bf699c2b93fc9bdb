#include <cstdlib>
#include <new>

#include "AllocationCounter.h"

bool kxtest::AllocationCounter::counting = false;
long kxtest::AllocationCounter::allocations = 0;

void* operator new(std::size_t size) {
    if (kxtest::AllocationCounter::counting)
        ++kxtest::AllocationCounter::allocations;
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return ::operator new(size); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
