// Walking the edge ring of a convex polygon. Internal.
//
// A ring is meant to close on its first edge. The walks below also end at a null link, and
// at a chain of links that runs into a loop which never comes back to the first edge, so that
// a damaged ring cannot keep a caller busy for ever.
#ifndef VOGEBASIC_CLIP_RING_H
#define VOGEBASIC_CLIP_RING_H

#include <cstddef>

#include "clip_records.h"

namespace geolib {
namespace clip {

/// Calls visit(edge) for every edge from head round the ring, in link order; visit returns
/// false to stop the walk early. Does nothing for a null head.
template <class Edge, class Visit>
void walkRing(Edge* head, Visit&& visit) {
    Edge* e = head;
    // A second walker takes two links per edge: it meets the first one before the ring closes
    // only when the links run into a loop that never comes back to head.
    Edge* ahead = head;
    while (e != nullptr) {
        if (!visit(e))
            return;
        e = e->next;
        for (int k = 0; k < 2 && ahead != nullptr; ++k)
            ahead = ahead->next;
        if (e == head || e == ahead)
            return;
    }
}

/// Number of edges of the ring at head, or 0 when head is null or the links do not close on
/// head (a null link or a loop elsewhere).
inline std::size_t closedRingSize(const line* head) {
    std::size_t n = 0;
    const line* last = nullptr;
    walkRing(head, [&](const line* e) {
        ++n;
        last = e;
        return true;
    });
    return (last != nullptr && last->next == head) ? n : 0;
}

}  // namespace clip
}  // namespace geolib

#endif  // VOGEBASIC_CLIP_RING_H
