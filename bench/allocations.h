// Counts what a program allocates, by taking the place of the global operators: for one source of a program.
#pragma once
#include <cstdlib>
#include <new>

namespace bench {

inline std::size_t allocations = 0;

}  // namespace bench

// Not inlined: the compiler would see a new that is freed.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++bench::allocations;
    if (void* p = std::malloc(size)) return p;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }
