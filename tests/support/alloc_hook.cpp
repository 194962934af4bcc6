#include "support/alloc_hook.h"

#include <cstddef>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* p);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void* p);
}

namespace {

vgtest::Tally g_tallies[2];  // malloc's, operator new's

// Counts one request of the kind; null when it is the one to refuse or none was had.
void* allocate(vgtest::Tally& t, std::size_t count, std::size_t size) {
    if (t.watching && ++t.requests == t.failAt) {
        t.refused = true;
        return nullptr;
    }
    void* p = count == 0 ? __real_malloc(size) : __real_calloc(count, size);
    t.live += p != nullptr && t.watching;
    return p;
}

void release(vgtest::Tally& t, void* p) {
    t.live -= p != nullptr && t.watching;
    __real_free(p);
}

void* newBlock(std::size_t size) {
    void* p = allocate(g_tallies[1], 0, size == 0 ? 1 : size);
    if (p == nullptr)
        throw std::bad_alloc();
    return p;
}

}  // namespace

vgtest::Tally& vgtest::tallyOf(bool news) {
    return g_tallies[news ? 1 : 0];
}

void* operator new(std::size_t size) {
    return newBlock(size);
}
void* operator new[](std::size_t size) {
    return newBlock(size);
}
void operator delete(void* p) noexcept {
    release(g_tallies[1], p);
}
void operator delete[](void* p) noexcept {
    release(g_tallies[1], p);
}
void operator delete(void* p, std::size_t) noexcept {
    release(g_tallies[1], p);
}
void operator delete[](void* p, std::size_t) noexcept {
    release(g_tallies[1], p);
}

extern "C" void* __wrap_malloc(std::size_t size) {
    return allocate(g_tallies[0], 0, size);
}

// The compiler may turn a malloc followed by zeroing into calloc: it counts as a malloc.
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size) {
    return allocate(g_tallies[0], count == 0 ? 1 : count, count == 0 ? 0 : size);
}

extern "C" void __wrap_free(void* p) {
    release(g_tallies[0], p);
}
