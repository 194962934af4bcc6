// Repeated pieces of a drawing: what goes is what repeats a piece kept before it, nothing else.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "VoGeBasic.h"
#include "hidden_line/model/hd_builders.h"
#include "support/alloc_hook.h"
#include "support/test_constants.h"

namespace {

using geolib::_s_hd_point_;
using geolib::_s_hd_proline_;

// The pieces as a list, each node's owner its index (a failed allocation ends the list early).
_s_hd_proline_* listOf(const std::vector<std::pair<_s_hd_point_, _s_hd_point_>>& pieces) {
    _s_hd_proline_* head = nullptr;
    _s_hd_proline_* last = nullptr;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if ((last = geolib::appendProline(pieces[i].first, pieces[i].second, last)) == nullptr)
            break;
        last->owner = static_cast<std::int32_t>(i);
        head = head == nullptr ? last : head;
    }
    return head;
}

// Pieces on a coarse grid (many share an X, as vertical edges do), each later one maybe a
// copy of an earlier piece: the same, turned round, moved by under tol or by a little over it,
// or slid along itself; some have a NaN or infinite end.
std::vector<std::pair<_s_hd_point_, _s_hd_point_>> drawing(std::uint32_t seed, double tol) {
    vgtest::Lcg r(seed);
    std::vector<std::pair<_s_hd_point_, _s_hd_point_>> out;
    auto grid = [&r] { return _s_hd_point_{r.below(8) * 1.0, r.below(40) * 0.5, r(-1, 1)}; };
    for (int k = 0; k < 3000; ++k) {
        const double pick = r();
        if (out.empty() || pick < 0.4) {
            out.push_back({grid(), grid()});
            continue;
        }
        auto [a, b] = out[r.below(static_cast<int>(out.size()))];
        const double by = pick < 0.6 ? 0.0 : pick < 0.8 ? r(-0.99, 0.99) : r(1.01, 2.0);
        a.x += by * tol;
        b.y -= by * tol;
        if (pick > 0.95)
            b = {2 * b.x - a.x, 2 * b.y - a.y, b.z};
        if (r() < 0.02)
            (r() < 0.5 ? a.x : b.y) = r() < 0.5 ? vgtest::kNaN : HUGE_VAL;
        out.push_back(r() < 0.5 ? std::make_pair(a, b) : std::make_pair(b, a));
    }
    return out;
}

// The pieces kept, by a scan of each piece, in list order, against those kept before it (ends
// within tol in X and Y, either way round); a piece with a coordinate that is not finite stays
// and repeats nothing.
std::vector<std::int32_t> keptByScan(
    const std::vector<std::pair<_s_hd_point_, _s_hd_point_>>& pieces, double tol) {
    auto near = [tol](_s_hd_point_ a, _s_hd_point_ b) {
        return std::fabs(a.x - b.x) <= tol && std::fabs(a.y - b.y) <= tol;
    };
    auto finite = [](_s_hd_point_ a) { return std::isfinite(a.x) && std::isfinite(a.y); };
    std::vector<std::int32_t> kept;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const auto& [a, b] = pieces[i];
        bool repeat = false;
        for (std::size_t k = 0; k < kept.size() && finite(a) && finite(b) && !repeat; ++k) {
            const auto& [c, d] = pieces[static_cast<std::size_t>(kept[k])];
            repeat = (near(a, c) && near(b, d)) || (near(a, d) && near(b, c));
        }
        if (!repeat)
            kept.push_back(static_cast<std::int32_t>(i));
    }
    return kept;
}

TEST(DropRepeatedProlines, DropsWhatRepeatsAPieceKeptBeforeIt) {
    for (const double tol : {1e-3, 0.0, 0.3}) {
        const auto pieces = drawing(tol == 0.0 ? 5 : 7, tol);
        const std::vector<std::int32_t> expected = keptByScan(pieces, tol);
        _s_hd_proline_* list = listOf(pieces);
        const long dropped = geolib::dropRepeatedProlines(list, tol);
        std::vector<std::int32_t> kept;
        for (const _s_hd_proline_* p = list; p != nullptr; p = p->next)
            kept.push_back(p->owner);
        EXPECT_EQ(kept, expected) << tol;
        EXPECT_EQ(dropped, static_cast<long>(pieces.size() - kept.size())) << tol;
        EXPECT_GT(dropped, 500) << tol;
        for (const double bad : {-1.0, vgtest::kNaN})
            EXPECT_EQ(geolib::dropRepeatedProlines(list, bad), 0);
        geolib::releaseProline(list);
    }
}

// Each allocation failing in turn: -1 and the list as it was.
TEST(DropRepeatedProlines, LeavesTheListAsItWasWhenAnAllocationFails) {
    auto pieces = drawing(3, 1e-3);
    pieces.resize(40);
    vgtest::forEachFailure(false, [&] {
        _s_hd_proline_* list = listOf(pieces);
        if (geolib::dropRepeatedProlines(list, 1e-3) < 0) {
            long count = 0;
            for (const _s_hd_proline_* p = list; p != nullptr; p = p->next)
                ++count;
            EXPECT_EQ(count, static_cast<long>(pieces.size()));
        }
        geolib::releaseProline(list);
    });
}

}  // namespace
