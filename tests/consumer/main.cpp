// Uses the installed library through its one public header; exits 0 when the results hold.
#include <cmath>
#include <cstdio>

#include "VoGeBasic.h"

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
    std::puts("consumer ok");
    return 0;
}
