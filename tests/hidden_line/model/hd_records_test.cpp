#include "hd_records.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/alloc_hook.h"

namespace {

using namespace geolib;

TEST(HDRecords, ReleaseGivesBackEveryFaceVertexAndLineAndNullsTheCaller) {
    _s_hd_prof_* obj = mallocHDProfObject();
    ASSERT_TRUE(obj->prosect == nullptr && obj->proline == nullptr);
    for (int f = 0; f < 3; ++f) {  // three faces of 3, 4 and 5 vertices, made by hand
        auto* face = static_cast<_s_hd_prosect_*>(std::malloc(sizeof(_s_hd_prosect_)));
        *face = {nullptr, 0, 0, obj->prosect};
        for (int v = 0; v < f + 3; ++v) {
            _s_hd_sect_* vertex = mallocHDSect();
            ASSERT_EQ(vertex->next, nullptr);
            vertex->next = face->sect;
            face->sect = vertex;
        }
        obj->prosect = face;
    }
    obj->proline = static_cast<_s_hd_proline_*>(std::malloc(sizeof(_s_hd_proline_)));
    obj->proline->next = nullptr;
    vgtest::AllocationWatch watch;
    freeHDProfObjectPointer(obj);
    EXPECT_EQ(obj, nullptr);
    EXPECT_EQ(watch.live(), -17);  // 12 vertices, 3 faces, 1 line and the object
    freeHDProfObjectPointer(obj);  // a second release of the same variable does nothing
    EXPECT_EQ(watch.live(), -17);
    vgtest::forEachAllocationFailure([] {
        _s_hd_prof_* o = mallocHDProfObject();
        freeHDProfObjectPointer(o);
        _s_hd_sect_* s = mallocHDSect();
        freeHDSectPointer(s);
    });
}

}  // namespace
