// Uses the installed library through its one public header, included as <VoGeBasic/...>;
// exits 0 when the results hold.
#include <cmath>
#include <cstdio>

#include <VoGeBasic/VoGeBasic.h>
#include <VoGeBasic/hd_engine.h>  // a single header by its own name, included again
#include <cstring>

int main() {
    VoGeMatrix3D rot;
    rot.getRotateMatrix(VoGePoint3D(0, 0, 0), VoGePoint3D(0, 0, 1), std::acos(-1.0) / 2);
    const VoGePoint3D p = rot.postMult1(VoGePoint3D(1, 0, 0));
    if (!(p == VoGePoint3D(0, 1, 0))) {
        std::puts("rotation about Z went wrong");
        return 1;
    }
    const VoGeVector3D v = VoGeVector3D(3, 4, 0).normalize();
    if (std::fabs(v.length() - 1.0) > 1e-12) {
        std::puts("normalisation went wrong");
        return 1;
    }
#ifdef EXPECTED_VERSION
    if (std::strcmp(VOGEBASIC_VERSION_STRING, EXPECTED_VERSION) != 0) {
        std::puts("the version header does not match the package's version");
        return 1;
    }
#endif
    std::puts("consumer ok");
    return 0;
}
