// Ruled tessellators: cones, cylinders, eccentric cones, snouts and sloped cylinders over random
// axes, sizes and offsets are closed solids drawn by their rims and silhouettes.
#include <gtest/gtest.h>

#include "hidden_line/model/solid_checks.h"

namespace {

using namespace hdtest;
using Rim = std::function<P(double)>;

// The ruled solid between two rims.
Solid ruled(const Rim& a, const Rim& b) {
    Solid s;
    s.rims = {curve(a), curve(b)};
    s.contours = contourGenerators(a, b);
    return s;
}

TEST(RuledSolids, RandomConesAreClosedAndDrawnByRimsAndSilhouettes) {
    vgtest::Lcg gen(3);
    const auto dirs = randomUnitVectors(40, 11);
    const auto sides = randomUnitVectors(40, 19);
    for (std::size_t i = 0; i < dirs.size(); ++i) {
        const std::string id = std::to_string(i);
        const P d = dirs[i];
        const double len = logUniform(gen, 0.1, 2000), r = logUniform(gen, 0.05, 500);
        const P a{0.3 * len, -0.7 * len, 0.2 * len}, b = add(a, d, len);
        // Cylinder, cone, pointed either way, and a wide flat cone seen within its half-angle.
        const double shapes[5][2] = {{r, r}, {r, 0.4 * r}, {r, 0}, {0, r}, {50 * len, len}};
        for (const auto& k : shapes)  // an end of radius 0 an apex
            expectTrueSolid(ep_divide_con(a, b, k[0], k[1]),
                            revolved({{k[0], 0, 0}, {k[1], len, 0}, {0, len, 0}, {0, 0, 0}}, a, d,
                                     ringStart(d), 0, kTwoPi),
                            "con " + id + " " + std::to_string(k[1] / r));
        // Eccentric cones: one straight side (offset |ra - rb|), or any offset off the normal.
        const double ra = logUniform(gen, 0.05, 300), rb = logUniform(gen, 0.05, 300);
        const P side = vecNormalize(add(sides[i], d, -vecDot(sides[i], d) + 1e-3));
        for (const P off : {add(vecScale(len, d), side, std::fabs(ra - rb)),
                            add(vecScale(len, d), sides[i], gen(0.01, 1) * len)}) {
            if (vecDot(off, d) >= 0.05 * norm(off))
                expectTrueSolid(ep_divide_ecn(a, add(a, off), ra, rb, vecScale(3, d)),
                                ruled(circleAt(a, ra, d), circleAt(add(a, off), rb, d)),
                                "ecn " + id);
        }
        // A snout in the frame x, y in the bottom plane, z off square to it; radii within 5 : 1.
        P u, v;
        squareTo(d, u, v);
        const P z = vecNormalize(add(d, u, 0.3));
        const double xoff = gen(0.01, 1) * len, yoff = -gen(0.01, 1) * len, rt = ra * gen(0.2, 1);
        const P top = add(add(add(a, z, len), u, xoff), v, yoff);
        expectTrueSolid(ep_divide_scn(ra, rt, len, xoff, yoff, a, u, v, z, gen(1e-3, 1) * ra),
                        ruled(circleAt(a, ra, d), circleAt(top, rt, d)), "scn " + id);
        // A cylinder cut by planes square to n at both ends.
        const P n = i % 4 == 0 ? d : vecNormalize(add(d, sides[i], 0.9));
        const double rc = logUniform(gen, 0.05, 0.3 * len + 0.05);
        auto cut = [&](P c) {
            return [=](double t) {
                const P p = circleAt(c, rc, d)(t);
                return add(p, d, -vecDot(n, vecSub(p, c)) / vecDot(n, d));
            };
        };
        expectTrueSolid(ep_divide_scy(a, b, rc, n), ruled(cut(a), cut(b)), "scy " + id);
    }
    // Seen a milliradian off the circles' normal, an eccentric cone whose side leans to within a
    // hair of edge-on along one generator: its faces fold there at any chord count that does not
    // put a vertex on that generator.
    const P a{1.1199850004169329, -2.6132983343061769, 0.74665666694462196};
    const P b = add(a, {2.756267697329664, 8.2441368343500354, 3.8246772136006935});
    const P d{-0.0010139987030815417, 9.0775170322679325e-05, 0.99999948178311504};
    const double ra = 1.9942292039328569, rb = 10.688276112530744;
    expectTrueSolid(ep_divide_ecn(a, b, ra, rb, vecScale(3, d)),
                    ruled(circleAt(a, ra, d), circleAt(b, rb, d)), "ecn nearly edge-on");
}

// A reducer between two pipes, concentric or eccentric, its radii on one side of the disc
// rule's steps or across them, in any view: each pipe's rim at the joint has its vertices where
// the reducer's rim has them, all but the two whose places the reducer's silhouette generators
// may take, and the reducer adds no more than those two.
TEST(RuledSolids, ReducerHasItsRimVerticesWherePipesHaveTheirs) {
    vgtest::Lcg gen(23);
    const auto dirs = randomUnitVectors(40, 29), sides = randomUnitVectors(40, 31);
    for (std::size_t i = 0; i < dirs.size(); ++i) {
        const P d = dirs[i], a{gen(-50, 50), gen(-50, 50), gen(-50, 50)};
        const double ra = logUniform(gen, 8, 3000), rb = logUniform(gen, 8, 3000);
        const double len = logUniform(gen, 0.2, 3) * std::max(ra, rb), pipe = 2 * len;
        const P side = vecNormalize(add(sides[i], d, -vecDot(sides[i], d)));
        for (const bool eccentric : {false, true}) {
            const P b = add(add(a, d, len), side, eccentric ? std::fabs(ra - rb) : 0.0);
            for (int end = 0; end < 2; ++end) {
                const P c = end == 0 ? a : b;
                const double r = end == 0 ? ra : rb;
                const auto reducer = pointsInPlane(
                    eccentric ? ep_divide_ecn(a, b, ra, rb, d) : ep_divide_con(a, b, ra, rb), c, d,
                    1e-9 * r);
                const auto mine =
                    pointsInPlane(end == 0 ? ep_divide_con(add(a, d, -pipe), a, ra, ra)
                                           : ep_divide_con(b, add(b, d, pipe), rb, rb),
                                  c, d, 1e-9 * r);
                const int shared = sharedPoints(mine, reducer, 1e-9 * r);
                const std::string what = "view " + std::to_string(i) + " end " +
                                         std::to_string(end) + (eccentric ? " ecn" : " con");
                EXPECT_GE(shared + 2, static_cast<int>(mine.size())) << what;
                EXPECT_LE(reducer.size(), mine.size() + 2) << what;
            }
        }
    }
}

// Non-finite points and sizes, radii below the smallest, a zero axis, an eccentric cone's
// normal that is zero, NaN or square to its axis, a snout's sagitta, frame and height, a sloped
// cylinder's cut that holds its axis.
TEST(RuledSolids, BadInputGivesNullAndFailedAllocationsLeakNothing) {
    const P o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, nan{kNaN, 0, 0}, far{0, 0, 5};
    expectRefused({ep_divide_con(nan, far, 1, 1), ep_divide_con(o, far, kInf, 1),
                   ep_divide_con(o, far, -1, 1), ep_divide_con(o, far, 0.009, 0.005),
                   ep_divide_con(o, {0, 0, 1e-7}, 1, 1), ep_divide_ecn(o, far, 1, 2, o),
                   ep_divide_ecn(o, far, 1, 2, nan), ep_divide_ecn(o, {3, 0, 0}, 1, 2, z),
                   ep_divide_scn(2, 1, 3, 0, 0, o, x, y, z, 0),
                   ep_divide_scn(2, 1, 3, 0, 0, o, x, y, z, kNaN),
                   ep_divide_scn(2, 1, 3, 0, 0, o, x, x, z, 0.1),
                   ep_divide_scn(2, 1, 0, 1, 1, o, x, y, z, 0.1),
                   ep_divide_scn(2, 1, 3, kInf, 0, o, x, y, z, 1), ep_divide_scy(o, far, 1, x),
                   ep_divide_scy(o, far, 1, o), ep_divide_scy(o, far, 0.005, z),
                   ep_divide_scy(o, o, 1, z)});
    const P a{1, 2, 3}, b{4, -2, 9}, n{0.2, 0.1, 1};
    expectAllocFailuresGiveNull({[&] { return ep_divide_con(a, b, 3, 3); },    // the disc's rings
                                 [&] { return ep_divide_con(a, b, 3, 1); },    // silhouette arcs
                                 [&] { return ep_divide_con(a, b, 0, 1); },    // an apex
                                 [&] { return ep_divide_con(a, b, 30, 16); },  // zipped
                                 [&] { return ep_divide_ecn(a, b, 2, 1, n); },
                                 [&] { return ep_divide_scn(2, 1, 3, 0.5, 0.2, a, x, y, z, 0.05); },
                                 [&] { return ep_divide_scy(a, b, 2, n); }});
}

}  // namespace
