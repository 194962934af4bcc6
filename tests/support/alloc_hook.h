// Allocation-failure hook for the unit tests.
//
// The test executable links with -Wl,--wrap=malloc,--wrap=calloc,--wrap=free, so every malloc
// (calloc counts as one) and free made
// by the library's code (and by the tests) goes through the wrappers in alloc_hook.cpp. While
// an AllocationWatch is alive, the wrappers count allocations and releases and can make one
// chosen allocation return null. operator new is replaced too: a NewWatch counts its calls
// (the standard containers' allocations) and can make one of them throw std::bad_alloc.
#ifndef VOGEBASIC_TESTS_ALLOC_HOOK_H
#define VOGEBASIC_TESTS_ALLOC_HOOK_H

namespace vgtest {

namespace detail {
struct Tally;  // what one kind of allocation has seen while watched
}

class AllocationWatch {
public:
    /// Counts allocations from now on; the failAt-th one (1-based) returns null. failAt 0
    /// fails none.
    explicit AllocationWatch(long failAt = 0);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    /// Allocation requests seen so far, the failed one included.
    long requests() const;
    /// True once the chosen allocation has been refused.
    bool refused() const;
    /// Blocks allocated and not yet freed since the watch began (frees of older blocks count
    /// against it too, so release only what the watched call made).
    long live() const;

protected:
    AllocationWatch(long failAt, detail::Tally& tally);

private:
    detail::Tally& tally_;
};

/// The same for operator new, through which the standard containers allocate: while a
/// NewWatch is alive, operator new calls are counted and the failAt-th one (1-based) throws
/// std::bad_alloc; live() counts blocks not yet deleted.
class NewWatch : public AllocationWatch {
public:
    explicit NewWatch(long failAt = 0);
};

/// Runs call() once with no failure to count the operator new calls it makes, then once with
/// each of them throwing std::bad_alloc in turn. The exception must come out of call() (which
/// may check, before it rethrows, that the caller's containers are as they were), and no block,
/// of operator new or of malloc, may be left live. Returns the number of calls of the unfailed
/// run.
template <class Call>
long forEachNewFailure(Call&& call);

/// Runs call() once with no failure to count its allocations, then once with each of them
/// failing in turn (k = 1, 2, ...). call must release whatever the function under test
/// returned; after each run no block may be left live. Returns the number of allocations of
/// the unfailed run. Reports failures through GoogleTest.
template <class Call>
long forEachAllocationFailure(Call&& call);

}  // namespace vgtest

#include <gtest/gtest.h>

#include <new>

template <class Call>
long vgtest::forEachAllocationFailure(Call&& call) {
    long total = 0;
    long live = 0;
    {
        AllocationWatch watch;
        call();
        total = watch.requests();
        live = watch.live();
    }
    EXPECT_EQ(live, 0) << "blocks left after a run without failures";
    for (long k = 1; k <= total; ++k) {
        bool refused = false;
        {
            AllocationWatch watch(k);
            call();
            refused = watch.refused();
            live = watch.live();
        }
        EXPECT_TRUE(refused) << "allocation " << k << " was never requested";
        EXPECT_EQ(live, 0) << "blocks leaked when allocation " << k << " failed";
    }
    return total;
}

template <class Call>
long vgtest::forEachNewFailure(Call&& call) {
    long total = 0;
    {
        NewWatch news;
        AllocationWatch mallocs;
        call();
        total = news.requests();
        EXPECT_GT(total, 0) << "the call made no allocation to fail";
        EXPECT_EQ(news.live(), 0) << "blocks left after a run without failures";
        EXPECT_EQ(mallocs.live(), 0) << "blocks left after a run without failures";
    }
    for (long k = 1; k <= total; ++k) {
        NewWatch news(k);
        AllocationWatch mallocs;
        bool threw = false;
        try {
            call();
        } catch (const std::bad_alloc&) {
            threw = true;
        }
        EXPECT_TRUE(news.refused()) << "allocation " << k << " was not refused";
        EXPECT_TRUE(threw) << "allocation " << k << " did not throw";
        EXPECT_EQ(news.live(), 0) << "blocks leaked when allocation " << k << " failed";
        EXPECT_EQ(mallocs.live(), 0) << "blocks leaked when allocation " << k << " failed";
    }
    return total;
}

#endif  // VOGEBASIC_TESTS_ALLOC_HOOK_H
