// Fuzz target: the geometry classes and the geolib functions on points, vectors and small
// systems. Checks what their headers promise: unit or zero vectors from normalize, plan angles
// within [0, 2pi), linear solutions that satisfy their systems, frame conversions that turn
// back, segment codes from the documented set.
#include <cmath>
#include <cstring>

#include "VoGeBasic.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

using vgtest::kTwoPi;

VoGeVector3D vectorFrom(FuzzedDataProvider& in) {
    return vgfuzz::triple<VoGeVector3D>(in);
}

VoGePoint3D pointFrom(FuzzedDataProvider& in) {
    return vgfuzz::triple<VoGePoint3D>(in);
}

bool isAngle(double a) {
    return std::isnan(a) || (a >= 0.0 && a < kTwoPi);
}

void checkVectors(FuzzedDataProvider& in) {
    const VoGeVector3D v = vectorFrom(in);
    const VoGeVector3D u = v.normalize();
    const double len = std::sqrt(u.x * u.x + u.y * u.y + u.z * u.z);
    VG_FUZZ_CHECK((u.x == 0.0 && u.y == 0.0 && u.z == 0.0) || std::fabs(len - 1.0) < 1e-12,
                  "normalize gives a unit vector or the zero vector");
    VG_FUZZ_CHECK(isAngle(geolib::angleToX(v)), "plan angles lie within [0, 2pi)");
}

void checkFrames(FuzzedDataProvider& in) {
    const VoGeVector3D v = vectorFrom(in);
    const VoGeVector3D z1 = vectorFrom(in).normalize();
    const VoGeVector3D z2 = vectorFrom(in).normalize();
    // An axis within 1e-5 of +Z is taken as +Z on the way in only (deliberately), so such
    // axes do not turn back exactly.
    auto nearZ = [](const VoGeVector3D& z) {
        return std::fabs(z.x) < 1e-4 && std::fabs(z.y) < 1e-4 && z.z > 0.0;
    };
    if (!vgfuzz::ordinary({v.x, v.y, v.z}) || z1.length() < 0.5 || z2.length() < 0.5 || nearZ(z1) ||
        nearZ(z2))
        return;
    const VoGeVector3D back = geolib::kestZxTrans(geolib::kestZxTrans(v, z1, z2), z2, z1);
    const double tol = 1e-9 * (1.0 + v.length());
    VG_FUZZ_CHECK(std::fabs(back.x - v.x) <= tol && std::fabs(back.y - v.y) <= tol &&
                      std::fabs(back.z - v.z) <= tol,
                  "a frame conversion turns back");
}

void checkLinear(FuzzedDataProvider& in) {
    const short n = static_cast<short>(in.ConsumeIntegralInRange<int>(1, 4));
    double a[16];
    double keep[16];
    double b[4];
    double rhs[4];
    double x[4] = {0, 0, 0, 0};
    for (int k = 0; k < n * n; ++k)
        keep[k] = a[k] = vgfuzz::number(in);
    for (int k = 0; k < n; ++k)
        rhs[k] = b[k] = vgfuzz::number(in);
    if (!geolib::gaussLiner(n, a, b, x))
        return;
    for (int k = 0; k < n * n; ++k)
        VG_FUZZ_CHECK(std::memcmp(&a[k], &keep[k], sizeof(double)) == 0,
                      "the flat form leaves its matrix intact");
    bool ordinary = true;
    for (int k = 0; k < n * n; ++k)
        ordinary = ordinary && vgfuzz::ordinary({keep[k]}, 1e3);
    for (int k = 0; k < n; ++k)
        ordinary = ordinary && vgfuzz::ordinary({rhs[k]}, 1e3) && vgfuzz::ordinary({x[k]}, 1e6);
    if (!ordinary)
        return;
    for (int i = 0; i < n; ++i) {
        double sum = 0.0;
        double scale = std::fabs(rhs[i]);
        for (int j = 0; j < n; ++j) {
            sum += keep[i * n + j] * x[j];
            scale += std::fabs(keep[i * n + j] * x[j]);
        }
        VG_FUZZ_CHECK(std::fabs(sum - rhs[i]) <= 1e-6 * (1.0 + scale),
                      "a solution satisfies its system");
    }
}

void checkSegments(FuzzedDataProvider& in) {
    const VoGePoint3D p1 = pointFrom(in);
    const VoGePoint3D p2 = pointFrom(in);
    const VoGePoint3D p = pointFrom(in);
    const short code = geolib::isPointOnLineSeg(p1, p2, p, 1e-6);
    const bool on = (code & geolib::kSegOn) != 0;
    const int offs = ((code & geolib::kSegBeyondStart) != 0) +
                     ((code & geolib::kSegBeyondEnd) != 0) + ((code & geolib::kSegOffLine) != 0);
    VG_FUZZ_CHECK(on ? offs == 0 : offs == 1, "a segment code is on, or exactly one way off");
    bool nan = false;
    for (double c : {p1.x, p1.y, p1.z, p2.x, p2.y, p2.z, p.x, p.y, p.z})
        nan = nan || std::isnan(c);
    VG_FUZZ_CHECK(!nan || code == geolib::kSegOffLine, "NaN lies off the line");
}

void checkCircle(FuzzedDataProvider& in) {
    const VoGeVector3D n = vectorFrom(in);
    VoGeCircle3d c(pointFrom(in), vgfuzz::number(in), n);
    const double angle = vgfuzz::number(in, 7.0);
    const VoGePoint3D p = c.getPt(angle);
    VG_FUZZ_CHECK(isAngle(c.getParam(p, 1e-6)), "circle parameters lie within [0, 2pi)");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    static void (*const kChecks[])(FuzzedDataProvider&) = {checkVectors, checkFrames, checkLinear,
                                                           checkSegments, checkCircle};
    while (in.remaining_bytes() > 0)
        kChecks[in.ConsumeIntegralInRange<int>(0, 4)](in);
    return 0;
}
