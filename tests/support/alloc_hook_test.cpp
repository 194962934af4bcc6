// The hook itself: a refused allocation is seen, and a leak on the failure path is counted.
#include "support/alloc_hook.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

void* g_leaked = nullptr;
void* volatile g_seen = nullptr;  // the blocks escape: the compiler may not drop them

// Two blocks, both released; when the second cannot be had the first is released as well,
// or handed to g_leaked to stand for a leak.
void buildPair(bool releaseOnFailure) {
    void* a = std::malloc(16);
    void* b = a != nullptr ? std::malloc(16) : nullptr;
    g_seen = a;
    g_seen = b;
    if (b == nullptr && !releaseOnFailure)
        g_leaked = a;
    else
        std::free(a);
    std::free(b);
}

TEST(AllocationHook, RefusesTheChosenRequestAndCountsWhatIsLeft) {
    {
        vgtest::Watch watch(false, 2);
        buildPair(false);
        EXPECT_TRUE(watch->refused && watch->requests == 2 && watch->live == 1);
    }
    std::free(g_leaked);
    EXPECT_EQ(vgtest::forEachFailure(false, [] { buildPair(true); }), 2);
}

}  // namespace
