// The hook itself: a refused allocation is seen, and a leak on the failure path is counted.
#include "support/alloc_hook.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

void* g_leaked = nullptr;

// Two blocks, both released; when the second cannot be had the first is released as well,
// or handed to g_leaked to stand for a leak.
bool buildPair(bool releaseOnFailure) {
    void* a = std::malloc(16);
    if (a == nullptr)
        return false;
    void* b = std::malloc(16);
    if (b == nullptr) {
        if (releaseOnFailure) {
            std::free(a);
        } else {
            g_leaked = a;
        }
        return false;
    }
    std::free(b);
    std::free(a);
    return true;
}

TEST(AllocationWatch, RefusesTheChosenRequestAndCountsWhatIsLeft) {
    {
        vgtest::AllocationWatch watch(2);
        EXPECT_FALSE(buildPair(false));
        EXPECT_TRUE(watch.refused());
        EXPECT_EQ(watch.requests(), 2);
        EXPECT_EQ(watch.live(), 1);  // the leak on the failure path is visible
    }
    std::free(g_leaked);
    const long n = vgtest::forEachAllocationFailure([] { buildPair(true); });
    EXPECT_EQ(n, 2);
}

}  // namespace
