// Allocation-failure hook for the unit tests.
//
// The test executable links with -Wl,--wrap=malloc,--wrap=calloc,--wrap=free, so every malloc
// (calloc counts as one) and free made by the library's code (and by the tests) goes through the
// wrappers in alloc_hook.cpp; operator new and delete are replaced there too (the standard
// containers allocate through them). While a Watch of a kind is alive, the allocations of that
// kind are counted, and the chosen one is refused: malloc returns null, operator new throws
// std::bad_alloc.
#ifndef VOGEBASIC_TESTS_ALLOC_HOOK_H
#define VOGEBASIC_TESTS_ALLOC_HOOK_H

#include <gtest/gtest.h>

#include <new>

namespace vgtest {

/// What one kind of allocation has seen while watched.
struct Tally {
    bool watching = false;
    long failAt = 0;    // the request to refuse (1-based); 0: none
    long requests = 0;  // requests so far, the refused one included
    long live = 0;      // blocks allocated and not yet freed since the watch began
    bool refused = false;
};
Tally& tallyOf(bool news);

/// Watches malloc's allocations (news false) or operator new's from now on, refusing the
/// failAt-th; release only what the watched call made (frees of older blocks count against it).
class Watch {
public:
    explicit Watch(bool news, long failAt = 0) : t_(tallyOf(news)) { t_ = {true, failAt}; }
    ~Watch() { t_.watching = false; }
    const Tally& operator*() const { return t_; }
    const Tally* operator->() const { return &t_; }

private:
    Tally& t_;
};

/// True while a watched run refuses one of its allocations.
inline bool failing() {
    return tallyOf(false).failAt > 0 || tallyOf(true).failAt > 0;
}

/// Runs call() once with no failure to count its allocations of the kind, then once with each of
/// them refused in turn. After each run no block of either kind may be live, and std::bad_alloc
/// must have come out of call() exactly when operator new refused one and `throws` is set (call
/// may check, before it rethrows, that the caller's containers are as they were). Returns the
/// count of the unfailed run; reports through GoogleTest.
template <class Call>
long forEachFailure(bool news, Call&& call, bool throws = true) {
    long total = 0;
    for (long k = 0; k <= total; ++k) {
        Watch n(true, news ? k : 0), m(false, news ? 0 : k);
        bool threw = false;
        try {
            call();
        } catch (const std::bad_alloc&) {
            threw = true;
        }
        total = k == 0 ? (news ? n->requests : m->requests) : total;
        EXPECT_TRUE(k == 0 || (news ? n->refused : m->refused)) << "not requested: " << k;
        EXPECT_EQ(threw, news && throws && k > 0) << "allocation " << k;
        EXPECT_EQ(m->live, 0) << "malloc'd blocks left when " << k << " failed";
        EXPECT_EQ(n->live, 0) << "blocks of new left when " << k << " failed";
    }
    EXPECT_TRUE(total > 0 || !news || !throws) << "the call made no allocation to fail";
    return total;
}

}  // namespace vgtest

#endif  // VOGEBASIC_TESTS_ALLOC_HOOK_H
