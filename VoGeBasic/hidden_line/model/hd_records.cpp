#include "hd_records.h"

#include <cstdlib>

namespace geolib {

_s_hd_prof_* mallocHDProfObject() {
    auto* obj = static_cast<_s_hd_prof_*>(std::malloc(sizeof(_s_hd_prof_)));
    if (obj == nullptr)
        return nullptr;
    obj->prosect = nullptr;
    obj->proline = nullptr;
    return obj;
}

_s_hd_sect_* mallocHDSect() {
    auto* node = static_cast<_s_hd_sect_*>(std::malloc(sizeof(_s_hd_sect_)));
    if (node != nullptr)
        node->next = nullptr;
    return node;
}

void freeHDProfObjectPointer(_s_hd_prof_*& obj) {
    if (obj == nullptr)
        return;
    releaseProline(obj->proline);
    releaseProsect(obj->prosect);
    std::free(obj);
    obj = nullptr;
}

void freeHDSectPointer(_s_hd_sect_*& head) {
    while (head != nullptr) {
        _s_hd_sect_* next = head->next;
        std::free(head);
        head = next;
    }
}

void releaseProline(_s_hd_proline_*& head) {
    while (head != nullptr) {
        _s_hd_proline_* next = head->next;
        std::free(head);
        head = next;
    }
}

void releaseProsect(_s_hd_prosect_*& head) {
    while (head != nullptr) {
        _s_hd_prosect_* next = head->next;
        freeHDSectPointer(head->sect);
        std::free(head);
        head = next;
    }
}

}  // namespace geolib
