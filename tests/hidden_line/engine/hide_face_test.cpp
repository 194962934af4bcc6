#include <gtest/gtest.h>

#include "hidden_line/engine/hd_engine_fixtures.h"

namespace {

using namespace geolib;
using namespace enginetest;

// The face test against brute force: a line sampled at many points, each called hidden when the
// face's plane lies in front of it where the face covers it in the drawing. Convex faces in
// general position and lines not seen end-on, so that the hidden part is one piece; samples
// within a small margin of the piece's ends, the face's outline or its plane are not judged.
TEST(HideLineByFace, HidesWhatBruteForceSamplingFindsBehindTheFace) {
    vgtest::Lcg r(21);
    int judged = 0, hiddenSamples = 0;
    for (int f = 0; f < 3000; ++f) {
        // A convex face: a triangle, or a parallelogram, tilted at most about 60 degrees.
        const P c = {r(-1, 1), r(-1, 1), r(-1, 1)};
        const P a = {c.x + r(0.5, 2), c.y + r(-0.5, 0.5), c.z + r(-1, 1)};
        const P b = {c.x + r(-0.5, 0.5), c.y + r(0.5, 2), c.z + r(-1, 1)};
        std::vector<P> pts = {c, a, b};
        if (r() < 0.5)
            pts = {c, a, {a.x + b.x - c.x, a.y + b.y - c.y, a.z + b.z - c.z}, b};
        const HDFace face = faceOf(pts);
        P p = {r(-3, 3), r(-3, 3), r(-3, 3)}, q = {r(-3, 3), r(-3, 3), r(-3, 3)};
        if (std::fabs(face.normal.z) < 0.5 || std::hypot(q.x - p.x, q.y - p.y) < 0.5)
            continue;
        orientNearFirst(p, q);
        P from = p, to = p;
        const bool hides = hideLineByFace(p, q, face, from, to);
        const double len = pointDist(p, q);
        const double t0 = hides ? pointDist(from, p) / len : 2.0;
        const double t1 = hides ? pointDist(to, p) / len : 2.0;
        for (int k = 1; k < 200; ++k) {
            const double t = k / 200.0;
            const P x = linComb(1.0, p, t, vecSub(q, p));
            // Where the face covers x in the drawing, and how far its plane lies in front.
            const P n = face.normal;
            const double planeZ = c.z - (n.x * (x.x - c.x) + n.y * (x.y - c.y)) / n.z;
            double margin = std::fmin(std::fabs(planeZ - x.z),
                                      std::fmin(std::fabs(t - t0), std::fabs(t - t1)) * len);
            bool covered = true;
            for (size_t e = 0; e < pts.size(); ++e) {
                const P u = pts[e], w = pts[(e + 1) % pts.size()];
                const double side = ((w.x - u.x) * (x.y - u.y) - (w.y - u.y) * (x.x - u.x)) /
                                    std::hypot(w.x - u.x, w.y - u.y);
                covered = covered && (n.z > 0 ? side : -side) > 0;
                margin = std::fmin(margin, std::fabs(side));
            }
            if (margin < 0.01)
                continue;
            const bool behind = covered && planeZ < x.z;
            ++judged;
            hiddenSamples += behind ? 1 : 0;
            ASSERT_EQ(hides && t > std::fmin(t0, t1) && t < std::fmax(t0, t1), behind)
                << "face " << f << " sample " << k;
        }
    }
    EXPECT_GT(judged, 100000);
    EXPECT_GT(hiddenSamples, 10000);
}

// The in-plane test answers as the exact one on lines whose slope to the plane straddles its
// tolerance (half of them within parts in 1e13 of it), at lengths from where snapping sets
// components to zero to far beyond: the band it leaves to the exact test covers the roundings.
TEST(LineCrossesPlane, AnswersAsTheExactTestAtTheTolerance) {
    vgtest::Lcg r(31);
    int crossing = 0;
    for (int k = 0; k < 200000; ++k) {
        const P n = vecNormalize({r(-1, 1), r(-1, 1), r(-1, 1)});
        const P u = vecNormalize(vecCross(n, {r(-1, 1), r(-1, 1), r(-1, 1)}));
        const double slope = 3e-5 * (1 + (r() < 0.5 ? r(-1e-13, 1e-13) : r(-0.5, 0.5)));
        const double len = std::pow(10.0, r(-5.5, 6));
        const P a = {r(-1e3, 1e3), r(-1e3, 1e3), r(-1e3, 1e3)};
        const P b = linComb(1.0, a, len, linComb(std::sqrt(1 - slope * slope), u, slope, n));
        const bool exact = isLineCrossPlane(a, b, n) != 0;
        crossing += exact;
        ASSERT_EQ(lineCrossesPlane(a, b, n), exact) << k;
    }
    EXPECT_GT(crossing, 50000);
    EXPECT_LT(crossing, 150000);
}

}  // namespace
