#include "hd_records.h"

#include <gtest/gtest.h>

#include "hidden_line/model/hd_builders.h"
#include "support/alloc_hook.h"

namespace {

using namespace geolib;

TEST(HDRecords, ReleaseGivesBackEveryFaceVertexAndLineAndNullsTheCaller) {
    _s_hd_prof_* obj = mallocHDProfObject();
    ASSERT_EQ(obj->prosect, nullptr);
    ASSERT_EQ(obj->proline, nullptr);
    const _s_hd_point_ o{0, 0, 0};
    obj->prosect = appendProsect(mallocTriSect(o, o, o), nullptr);
    appendProsect(mallocQuadSect(o, o, o, o), obj->prosect);
    appendProsect(mallocQuadSect(o, o, o, o), obj->prosect);
    obj->proline = appendProline(o, o, nullptr);
    appendProline(o, o, obj->proline);
    vgtest::AllocationWatch watch;
    freeHDProfObjectPointer(obj);
    EXPECT_EQ(obj, nullptr);
    EXPECT_EQ(watch.live(), -17);  // 11 vertices, 3 faces, 2 lines and the object
    freeHDProfObjectPointer(obj);  // a second release of the same variable does nothing
    EXPECT_EQ(watch.live(), -17);
    vgtest::forEachAllocationFailure([] {
        _s_hd_prof_* p = mallocHDProfObject();
        freeHDProfObjectPointer(p);
        _s_hd_sect_* s = mallocHDSect();
        freeHDSectPointer(s);
    });
}

}  // namespace
