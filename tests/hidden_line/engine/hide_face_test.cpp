#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "hidden_line/engine/hd_engine_fixtures.h"
#include "hidden_line/engine/hd_pass.h"

namespace {

using namespace geolib;
using namespace enginetest;

// The face test against brute force: a line sampled at many points, each called hidden when the
// face's plane lies in front of it where the face covers it in the drawing. Convex faces in
// general position and lines not seen end-on, so that the hidden part is one piece; samples
// within a small margin of the piece's ends, the face's outline or its plane are not judged.
TEST(HideLineByFace, HidesWhatBruteForceSamplingFindsBehindTheFace) {
    std::uint64_t state = 21;
    auto unit = [&] {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(state >> 11) * 0x1.0p-53;
    };
    auto in = [&](double lo, double hi) { return lo + (hi - lo) * unit(); };
    int judged = 0;
    int hiddenSamples = 0;
    for (int f = 0; f < 3000; ++f) {
        // A convex face: a triangle, or a parallelogram, tilted at most about 60 degrees.
        const P c = {in(-1, 1), in(-1, 1), in(-1, 1)};
        const P a = {c.x + in(0.5, 2), c.y + in(-0.5, 0.5), c.z + in(-1, 1)};
        const P b = {c.x + in(-0.5, 0.5), c.y + in(0.5, 2), c.z + in(-1, 1)};
        std::vector<P> pts = {c, a, b};
        if (unit() < 0.5)
            pts = {c, a, {a.x + b.x - c.x, a.y + b.y - c.y, a.z + b.z - c.z}, b};
        const geolib::HDFace face = faceOf(pts);
        if (std::fabs(face.normal.z) < 0.5)
            continue;
        P p = {in(-3, 3), in(-3, 3), in(-3, 3)};
        P q = {in(-3, 3), in(-3, 3), in(-3, 3)};
        if (std::hypot(q.x - p.x, q.y - p.y) < 0.5)
            continue;
        geolib::orientNearFirst(p, q);
        P from = p;
        P to = p;
        const bool hides = geolib::hideLineByFace(p, q, face, from, to);
        const double len = geolib::pointDist(p, q);
        const double t0 = hides ? geolib::pointDist(from, p) / len : 2.0;
        const double t1 = hides ? geolib::pointDist(to, p) / len : 2.0;
        for (int k = 1; k < 200; ++k) {
            const double t = k / 200.0;
            const P x = geolib::linComb(1.0, p, t, geolib::vecSub(q, p));
            // Where the face covers x in the drawing, and how far its plane lies in front.
            double margin = HUGE_VAL;
            bool covered = true;
            const int count = static_cast<int>(pts.size());
            for (int e = 0; e < count; ++e) {
                const P u = pts[e];
                const P w = pts[(e + 1) % count];
                const double side = ((w.x - u.x) * (x.y - u.y) - (w.y - u.y) * (x.x - u.x)) /
                                    std::hypot(w.x - u.x, w.y - u.y);
                const double inward = face.normal.z > 0 ? side : -side;
                covered = covered && inward > 0;
                margin = std::fmin(margin, std::fabs(side));
            }
            const P nz = face.normal;
            const double planeZ = c.z - (nz.x * (x.x - c.x) + nz.y * (x.y - c.y)) / nz.z;
            margin = std::fmin(margin, std::fabs(planeZ - x.z));
            margin = std::fmin(margin, std::fmin(std::fabs(t - t0), std::fabs(t - t1)) * len);
            if (margin < 0.01)
                continue;
            const bool behind = covered && planeZ < x.z;
            const bool inPiece = hides && t > std::fmin(t0, t1) && t < std::fmax(t0, t1);
            ++judged;
            hiddenSamples += behind ? 1 : 0;
            ASSERT_EQ(inPiece, behind) << "face " << f << " sample " << k;
        }
    }
    EXPECT_GT(judged, 100000);
    EXPECT_GT(hiddenSamples, 10000);
}

}  // namespace
