// Building open lists of clipping records in order. Internal.
#ifndef VOGEBASIC_CLIP_LIST_H
#define VOGEBASIC_CLIP_LIST_H

namespace geolib {
namespace clip {

/// Appends records (whose next link is already null) to the end of an open list.
template <class T>
struct ListBuilder {
    T* head = nullptr;
    T* tail = nullptr;

    void append(T* r) {
        if (tail == nullptr)
            head = r;
        else
            tail->next = r;
        tail = r;
    }
};

}  // namespace clip
}  // namespace geolib

#endif  // VOGEBASIC_CLIP_LIST_H
