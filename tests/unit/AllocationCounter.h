// Counts heap allocations made through operator new while counting is switched on. The replacement
// operators live in allocation_counter.cpp, a file of their own so that the compiler never sees them
// inline; with counting off they only forward to malloc and free, so other tests are unaffected.
#pragma once

namespace kxtest {

struct AllocationCounter {
    static bool counting;
    static long allocations;
};

}  // namespace kxtest
