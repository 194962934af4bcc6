// Repeated pieces of a drawing: the edge two butting solids share comes back once from each.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "hd_engine.h"

namespace geolib {

namespace {

// A piece's place on the grid: columns tol wide by its leftmost X (the X itself for a tol of
// 0), each column in order of its lowest Y. A repeat of a piece has its leftmost X within tol
// of the piece's, so it lies in the piece's column or a neighbour, within tol of its lowest Y.
struct RepeatKey {
    double column;
    double bottom;
    std::size_t index;  ///< the piece's place in the list
    std::size_t group;  ///< which column, counted from the left
    _s_hd_proline_* node;
    bool gone;
};

bool keyBefore(const RepeatKey& a, const RepeatKey& b) {
    if (a.column != b.column)
        return a.column < b.column;
    if (a.bottom != b.bottom)
        return a.bottom < b.bottom;
    return a.index < b.index;
}

bool endsNear(_s_hd_point_ a, _s_hd_point_ b, double tol) {
    return std::fabs(a.x - b.x) <= tol && std::fabs(a.y - b.y) <= tol;
}

bool repeats(const _s_hd_proline_& a, const _s_hd_proline_& b, double tol) {
    return (endsNear(a.start, b.start, tol) && endsNear(a.end, b.end, tol)) ||
           (endsNear(a.start, b.end, tol) && endsNear(a.end, b.start, tol));
}

constexpr std::size_t kNoKey = SIZE_MAX;

}  // namespace

long dropRepeatedProlines(_s_hd_proline_*& head, double tol) {
    if (!(tol >= 0.0) || head == nullptr)
        return 0;
    std::size_t n = 0;
    for (const _s_hd_proline_* p = head; p != nullptr; p = p->next)
        ++n;
    if (n > SIZE_MAX / sizeof(RepeatKey) - 1)
        return -1;
    // The keys in grid order, where each piece's key went, and where each column starts.
    auto* keys = static_cast<RepeatKey*>(std::malloc(n * sizeof(RepeatKey)));
    auto* place = static_cast<std::size_t*>(std::malloc(n * sizeof(std::size_t)));
    auto* starts = static_cast<std::size_t*>(std::malloc((n + 1) * sizeof(std::size_t)));
    if (keys == nullptr || place == nullptr || starts == nullptr) {
        std::free(keys);
        std::free(place);
        std::free(starts);
        return -1;
    }
    std::size_t m = 0;
    std::size_t i = 0;
    for (_s_hd_proline_* p = head; p != nullptr; p = p->next, ++i) {
        place[i] = kNoKey;
        if (!std::isfinite(p->start.x) || !std::isfinite(p->start.y) || !std::isfinite(p->end.x) ||
            !std::isfinite(p->end.y))
            continue;
        const double left = std::fmin(p->start.x, p->end.x);
        const double column = tol > 0.0 ? std::floor(left / tol) : left;
        if (std::isfinite(column))
            keys[m++] = {column, std::fmin(p->start.y, p->end.y), i, 0, p, false};
    }
    std::sort(keys, keys + m, keyBefore);
    std::size_t columns = 0;
    for (std::size_t k = 0; k < m; ++k) {
        if (k == 0 || keys[k].column != keys[k - 1].column)
            starts[columns++] = k;
        keys[k].group = columns - 1;
        place[keys[k].index] = k;
    }
    starts[columns] = m;
    // Neighbouring columns hold repeats only on a grid; with a tol of 0 a repeat shares the X.
    const double reach = tol > 0.0 ? 1.0 : 0.0;
    long dropped = 0;
    for (i = 0; i < n; ++i) {
        if (place[i] == kNoKey)
            continue;
        RepeatKey& key = keys[place[i]];
        bool repeat = false;
        for (std::size_t c = key.group == 0 ? 0 : key.group - 1;
             !repeat && c <= key.group + 1 && c < columns; ++c) {
            if (std::fabs(keys[starts[c]].column - key.column) > reach)
                continue;
            const RepeatKey low = {keys[starts[c]].column, key.bottom - tol, 0, 0, nullptr, false};
            for (const RepeatKey* it =
                     std::lower_bound(keys + starts[c], keys + starts[c + 1], low, keyBefore);
                 !repeat && it != keys + starts[c + 1] && it->bottom <= key.bottom + tol; ++it)
                repeat = it->index < i && !it->gone && repeats(*it->node, *key.node, tol);
        }
        if (repeat) {
            key.gone = true;
            ++dropped;
        }
    }
    _s_hd_proline_** link = &head;
    i = 0;
    for (_s_hd_proline_* p = head; p != nullptr; ++i) {
        _s_hd_proline_* next = p->next;
        if (place[i] != kNoKey && keys[place[i]].gone) {
            *link = next;
            std::free(p);
        } else {
            link = &p->next;
        }
        p = next;
    }
    std::free(keys);
    std::free(place);
    std::free(starts);
    return dropped;
}

}  // namespace geolib
