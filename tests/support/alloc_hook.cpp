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

namespace vgtest {
namespace detail {

struct Tally {
    bool watching = false;
    long failAt = 0;
    long requests = 0;
    long live = 0;
    bool refused = false;

    // Counts one request; false when it is the one to refuse.
    bool grant() {
        if (!watching)
            return true;
        ++requests;
        if (requests != failAt)
            return true;
        refused = true;
        return false;
    }
};

}  // namespace detail
}  // namespace vgtest

namespace {

vgtest::detail::Tally g_mallocs;
vgtest::detail::Tally g_news;

void* newBlock(std::size_t size) {
    if (!g_news.grant())
        throw std::bad_alloc();
    void* p = __real_malloc(size == 0 ? 1 : size);
    if (p == nullptr)
        throw std::bad_alloc();
    if (g_news.watching)
        ++g_news.live;
    return p;
}

void deleteBlock(void* p) {
    if (p == nullptr)
        return;
    if (g_news.watching)
        --g_news.live;
    __real_free(p);
}

}  // namespace

void* operator new(std::size_t size) {
    return newBlock(size);
}
void* operator new[](std::size_t size) {
    return newBlock(size);
}
void operator delete(void* p) noexcept {
    deleteBlock(p);
}
void operator delete[](void* p) noexcept {
    deleteBlock(p);
}
void operator delete(void* p, std::size_t) noexcept {
    deleteBlock(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    deleteBlock(p);
}

extern "C" void* __wrap_malloc(std::size_t size) {
    if (!g_mallocs.grant())
        return nullptr;
    void* p = __real_malloc(size);
    if (p != nullptr && g_mallocs.watching)
        ++g_mallocs.live;
    return p;
}

// The compiler may turn a malloc followed by zeroing into calloc: it counts as a malloc.
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (!g_mallocs.grant())
        return nullptr;
    void* p = __real_calloc(count, size);
    if (p != nullptr && g_mallocs.watching)
        ++g_mallocs.live;
    return p;
}

extern "C" void __wrap_free(void* p) {
    if (g_mallocs.watching && p != nullptr)
        --g_mallocs.live;
    __real_free(p);
}

namespace vgtest {

AllocationWatch::AllocationWatch(long failAt) : AllocationWatch(failAt, g_mallocs) {}

AllocationWatch::AllocationWatch(long failAt, detail::Tally& tally) : tally_(tally) {
    tally_ = detail::Tally();
    tally_.failAt = failAt;
    tally_.watching = true;
}

AllocationWatch::~AllocationWatch() {
    tally_.watching = false;
}

long AllocationWatch::requests() const {
    return tally_.requests;
}
bool AllocationWatch::refused() const {
    return tally_.refused;
}
long AllocationWatch::live() const {
    return tally_.live;
}

NewWatch::NewWatch(long failAt) : AllocationWatch(failAt, g_news) {}

}  // namespace vgtest
