#include "support/alloc_hook.h"

#include <cstddef>

extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* p);
void* __wrap_malloc(std::size_t size);
void __wrap_free(void* p);
}

namespace {

bool g_watching = false;
long g_failAt = 0;
long g_requests = 0;
long g_live = 0;
bool g_refused = false;

}  // namespace

extern "C" void* __wrap_malloc(std::size_t size) {
    if (!g_watching)
        return __real_malloc(size);
    ++g_requests;
    if (g_requests == g_failAt) {
        g_refused = true;
        return nullptr;
    }
    void* p = __real_malloc(size);
    if (p != nullptr)
        ++g_live;
    return p;
}

extern "C" void __wrap_free(void* p) {
    if (g_watching && p != nullptr)
        --g_live;
    __real_free(p);
}

namespace vgtest {

AllocationWatch::AllocationWatch(long failAt) {
    g_failAt = failAt;
    g_requests = 0;
    g_live = 0;
    g_refused = false;
    g_watching = true;
}

AllocationWatch::~AllocationWatch() {
    g_watching = false;
}

long AllocationWatch::requests() const {
    return g_requests;
}
bool AllocationWatch::refused() const {
    return g_refused;
}
long AllocationWatch::live() const {
    return g_live;
}

}  // namespace vgtest
