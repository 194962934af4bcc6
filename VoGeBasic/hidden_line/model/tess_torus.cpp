// Tessellator of the pipe elbow: a segment of a torus, drawn by its outline and its end rims.
//
// The tube is cut into rings (stations) along the bend. Each ring is a circle of the tube's
// radius about a point of the centre line, in the plane normal to the bend's tangent there. Its
// vertices follow one pattern along the whole bend: m vertices at equal angles round the tube,
// measured in the ring's own frame (radial direction and bend axis), made as a disc makes its
// ring (splitRing). The end rings are split at a silhouette point, as the disc of the same
// circle is, so that an elbow's end ring and the rim of a pipe coincide chord for chord; between
// them the pattern's start turns along the bend, by the shortest way modulo a chord (at most
// half a chord over the whole bend), smoothly from standing still at both ends: the rings next
// to an end keep its pattern, so that where the tube is seen nearly along its length there, their
// chords lie beside the end ring's as the tube does beside its rim, and do not stand out over
// the rim's chords. The rings' vertices therefore do not turn with the silhouette. The silhouette
// points of a ring are where its radial direction is normal to Z, centre +- r * unit(Z x t), t the
// tangent; each intermediate ring takes both as extra vertices (a pattern vertex within a hair of
// one stands for it, and pattern vertices within half a chord of one are left out: seen along Z
// they would lie beyond the chain drawn from it). The lines along the tube are the two chains of
// silhouette points, ring to ring: face edges on the true outline, within a chord's sagitta of it.
// Between two rings the chains cut the band in two halves, each stitched from chain to chain by
// angle round the tube, so the faces beside a chain keep to their side of it whatever the
// silhouette does: where it turns round the tube no face leans across the drawn outline and hides
// it. A ring seen end-on (the tube seen along its length) is outline all round and is drawn whole.
// Where the tube is seen nearly along its length, its silhouette turns half round the tube within a
// short stretch of the bend about the ring whose tangent comes nearest the view axis, and only
// rings on either side of that ring can follow the turn: that ring is always made when the turn
// could fall between two chosen rings. There the rings beside an end rim or a ring drawn whole lie
// nearly over it, and their silhouette points, on the circle between its vertices, would carry
// faces over its chords: a ring drawn whole takes the points where its neighbours' chains lie
// outside its chords, and beside an end rim a chain whose point lies under the rim runs through
// the pattern vertex at the end of the rim's chord towards the ring instead (so each ring's
// faces wait for the next ring), and a ring whose point lies outside such a chord leaves out
// the vertex beside it towards the chord's far end, where the rim is the outline (and the ones
// after it while its edge from the point would still stand over the chord). A ring that
// would lie over an end rim in the drawing closer than the hide pass tells its faces from the
// rim's chords (which they would hide) is left out, between the rim and the rings beside it that
// lie farther off: the rim stands for it. Where the silhouette
// turns between an end rim and the ring beside it, that ring's silhouette points can lie outside
// a rim chord in the drawing, nearer the viewer, and the faces through them hide it: the chains
// of that band then run from that chord's end away from the ring, the outline there (or, where
// such a chain would stray from it, from the end towards the ring, not drawn), and a chain
// through a pattern vertex of that ring from the rim's vertex of the same place, not drawn. A ring
// drawn whole also takes the middles of the chords beside its silhouette points (which span up to
// one and a half pattern chords) where they would stray from it by more than the allowance.
// Seen a few degrees off its length at an end where the tube beyond comes nearer the viewer, the
// rings there shift sideways in the drawing and their pattern vertices come out between a rim
// chord and the rim's circle: each such vertex moves round the tube to just inside the chord.
#include <cmath>
#include <initializer_list>

#include "core/plan.h"
#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

constexpr _s_hd_point_ kViewAxis = {0.0, 0.0, 1.0};
/// A silhouette chain may stray this much over the chord sagittas the chosen rings allow before a
/// ring is put in: rounding alone never adds one.
constexpr double kChainTolMargin = 1.01;
/// The outline is allowed at most the outer equator's sagitta of this step (radians), an eighth of
/// a turn, the coarsest the chord rule chooses: with a caller's coarser step as the allowance, a
/// full ring of one chosen step (or a half turn of one) would keep its two rings alone, and the
/// band between them would lie flat or turn inside out.
constexpr double kMaxChainStep = 0.25 * core::kPi;
/// Far from the origin the chains' points carry rounding errors of their coordinates' size: a
/// chain is never asked to keep closer than this fraction of them (an elbow at 1e308 would
/// otherwise fill itself with rings to the limit).
constexpr double kChainRoundingRel = 1e-9;
/// Depth of the ring subdivision between two chosen rings: far more than halving a full turn
/// down to kMinRingStep needs.
constexpr int kMaxRingDepth = 64;
/// A silhouette point within this angle round the tube (radians) of a ring vertex is that
/// vertex: it then lies within this fraction of the tube radius of the true silhouette, while a
/// point put in beside the vertex would only make sliver faces.
constexpr double kSilhouetteSnapAngle = 1e-6;
/// A pattern vertex within this fraction of a chord angle of a silhouette point is left out of
/// its ring: seen along Z a vertex that near the silhouette lies beyond the chain drawn to the
/// next ring, and the faces through it would hide that chain; further round it lies inside.
constexpr double kSilhouetteClearChords = 0.5;
/// A ring goes where the tangent comes nearest the view axis when its slant from the axis there
/// (the sine of it, |axis . Z|) is below this many chosen ring steps (the step in radians). Two
/// rings on either side of that angle, h1 and h2 from it, miss the silhouette's half turn when the
/// slant is below sqrt(h1 h2), at most half a step: twice that leaves a margin for the rings'
/// rounding and the bend's sampling.
constexpr double kNearAxisSlantSteps = 1.0;
/// A tube ring holds its pattern's vertices, its two silhouette points and, drawn whole, the four
/// points where its neighbours hold their chains.
/// A rim seen nearer edge-on than this (the Z component of its normal) covers no silhouette point
/// of the rings beside it: its disc seen along Z is too thin to tell.
constexpr double kRimSeenSlant = 1e-6;
/// A point this fraction of the tube radius outside a rim's circle, or inside one of its chords,
/// seen along Z, still counts as on it: the rim's own vertices are, up to rounding.
constexpr double kRimSlackRel = 1e-9;
/// Where that slack (with the coordinates' rounding) exceeds this share of the outline's
/// allowance, which side of a chord a point lies on is rounding: rings stay as made.
constexpr double kRimSlackShare = 0.01;
/// A silhouette point of a ring beside an end rim up to this share of the outline's allowance
/// outside the rim's circle seen along Z still lies along the rim (see ElbowBuilder::underRim)
/// where it lies beyond the rim's chord by no more than kRimOverShare of the allowance: the rings
/// next to a rim seen nearly along the tube lie that little outside it. It is never more than
/// kRimReachMost (model units), within which the hide pass takes a point as on the rim's vertex:
/// a point farther out lies, seen a few degrees off the tube's length, where the rings beside the
/// rim bulge past it in the drawing, and the chain through it is the outline there (the faces of
/// those rings hide the rim's chords).
constexpr double kRimReachShare = 0.1;
constexpr double kRimReachMost = 1e-4;
constexpr double kRimOverShare = 0.9;
/// A ring vertex outside an end rim's chord moves round the tube by at most this share of a
/// pattern chord (see ElbowBuilder::insideRimChords): its neighbours, moving too, stay apart, and
/// it stays clear of the silhouette points.
constexpr double kRimMoveChords = 0.45;
/// Halvings of the angle that finds where a ring comes inside a rim chord: far below rounding.
constexpr int kRimMoveSteps = 60;
/// The chain's point on the ring after a ring under a rim lies no farther outside the rim's chords
/// than the outline's allowance, or this many allowances where the ring before holds a pattern
/// vertex in place of its silhouette point too (see ElbowBuilder::underRim): the outline from the
/// rim's chord out to that point, not drawn, then stays within about half of it of the chord or
/// of the chain drawn on from there.
constexpr double kRimRunEndShare = 2.0;
/// A ring's edge from its silhouette point, outside an end rim's chord nearer the viewer, may
/// stand over that chord for this share of the outline's allowance beyond the point before the
/// pattern vertex it runs to is left out (see ElbowBuilder::overRimChord).
constexpr double kRimCoverShare = 1.0;
/// ... and a vertex after that one is left out too only where the vertex the edge then runs to
/// lies less than this share of a turn round the tube from the point, so that each half of the
/// ring between its chains keeps a vertex.
constexpr double kRimCoverTurnMost = 0.25;
/// A ring seen end-on where the tangent comes nearest the view axis takes the place of a chosen
/// ring within this many chosen steps of it: the bands on either side then span a step or more.
constexpr double kEndOnStandInSteps = 0.25;
/// A ring within this distance of an end rim all round, seen along Z, and not behind it, lies over
/// the rim's chords closer than the hide pass tells them apart (it takes a point within 1e-4 of a
/// face's vertex as in the face), and its faces hide them: no ring goes there.
constexpr double kRimApart = 1e-3;
/// ... nor farther than this share of the outline's allowance, so that the rim, standing for the
/// rings there, keeps to the true outline within that allowance even on a tiny elbow (a band up
/// to a ring beside that stretch stays within four times the distance).
constexpr double kRimApartShare = 0.25;
/// A ring farther from the viewer than the rim by less than this lies level with it for the hide
/// pass (which takes 3e-4 as level), and its faces hide the rim's chords as nearer ones would.
constexpr double kRimBehind = 1e-3;
/// The points round the tube at which a ring's distance from a rim is measured.
constexpr int kRimApartSamples = 16;
/// The points along a chain from an end rim's vertex (see ElbowBuilder::besideRim) at which its
/// distance from the true outline is measured, and the stations between the rim and the ring
/// beside it whose silhouette points stand for the true silhouette there.
constexpr int kRimChainSamples = 16;
/// A ring drawn whole takes at most this many points besides its pattern and its silhouette points:
/// four where its neighbours hold their chains, and the middles of the (at most four) chords
/// beside its silhouette points (see ElbowBuilder::settlePending).
constexpr int kMaxRingExtras = 8;
constexpr int kMaxTubeRingVertices = hd::kMaxCurveChords + 2 + kMaxRingExtras;

// The bend: centre c, unit axis a, unit radial u0 towards the start, v0 = a x u0, so that the
// angle phi runs counter-clockwise about a.
struct Bend {
    _s_hd_point_ c, a, u0, v0;
    double bendRadius;
    double tubeRadius;
};

// One station of the tube along the bend.
struct Station {
    double phi;
    _s_hd_point_ centre;
    _s_hd_point_ radial;   // unit, from the bend centre
    _s_hd_point_ tangent;  // unit, along the bend
    bool endOn;            // the tube is seen along its length here: the whole ring is outline
    _s_hd_point_ split;    // unit, from the ring's centre to its first silhouette point
    double turn;           // the split's angle round the tube (aroundTube)
};

double wrapAngle(double x) {
    return std::remainder(x, core::kFullTurn);
}

// The angle round the tube at st of the direction v (square to the tangent): counter-clockwise
// about the tangent from the radial, towards tangent x radial = -axis, the way the rings run.
double aroundTube(const Bend& b, const Station& st, _s_hd_point_ v) {
    return std::atan2(-vecDot(v, b.a), vecDot(v, st.radial));
}

// The station at phi, its split on the same silhouette as prev's (when there is one).
Station stationAt(const Bend& b, double phi, const Station* prev) {
    Station st;
    st.phi = phi;
    st.radial = linComb(std::cos(phi), b.u0, std::sin(phi), b.v0);
    st.tangent = linComb(-std::sin(phi), b.u0, std::cos(phi), b.v0);
    st.centre = linComb(1.0, b.c, b.bendRadius, st.radial);
    // Seen along the tube the silhouette points are undefined: the ring splits along the bend
    // axis, the limit of its neighbours' splits, so the silhouette chains run on through it.
    st.endOn = std::fabs(std::fabs(st.tangent.z) - 1.0) <= hd::kFacingTol;
    st.split = st.endOn ? b.a : unitCross(kViewAxis, st.tangent);
    st.turn = aroundTube(b, st, st.split);
    if (prev != nullptr && std::fabs(wrapAngle(st.turn - prev->turn)) > 0.5 * core::kPi) {
        st.split = vecNegate(st.split);
        st.turn = wrapAngle(st.turn + core::kPi);
    }
    return st;
}

// What a tube ring holds besides its pattern and its silhouette points: a chain may run through
// a given pattern vertex within a chord of its silhouette point instead of the point itself,
// drawn or not, pattern vertices may be left out, and a ring drawn whole takes points round the
// tube at the given angles (see ElbowBuilder::settlePending).
struct RingExtras {
    int vertex[2] = {-1, -1};          // the chain runs through this vertex of the pattern ring
    bool undrawn[2] = {false, false};  // ... and is not drawn to or from it
    bool leaveOut[hd::kMaxCurveChords] = {};   // these vertices of the pattern ring are left out
    bool moved[hd::kMaxCurveChords] = {};      // these vertices of the pattern ring move round
    double movedTo[hd::kMaxCurveChords] = {};  // ... the tube to these angles (aroundTube)
    int count = 0;
    double angle[kMaxRingExtras] = {};  // round the tube (aroundTube)
};

// A ring of the tube as the faces use it: the vertices of its pattern ring with its two
// silhouette points put in, counter-clockwise about the tangent from the first silhouette point.
struct TubeRing {
    int count = 0;
    int half = 0;    // the position of the second silhouette point
    int chords = 0;  // m, the pattern's vertex count
    _s_hd_point_ pts[kMaxTubeRingVertices];
    int pattern[kMaxTubeRingVertices];    // the vertex's index in the pattern; -1 put in
    double angle[kMaxTubeRingVertices];   // round the tube from pts[0]: 0 there, pi at pts[half]
    double sil;                           // pts[0]'s angle round the tube (the station's turn)
    bool onSilhouette[2] = {true, true};  // pts[0], pts[half] lie on the true silhouette
    bool throughRim[2] = {false, false};  // an end ring's chain through a rim vertex, drawn
    _s_hd_point_ centre{};
    double phi = 0.0;  // the station's angle along the bend

    // Position count is pts[0] again, at the end of the turn.
    _s_hd_point_ at(int k) const { return pts[k % count]; }
    int patternAt(int k) const { return pattern[k % count]; }
    // Position -1 stands before pts[0]: a ring so far from the origin that its points round to
    // its centre's neighbours measures every angle as 0 or pi, and may hold its second
    // silhouette point first.
    double angleAt(int k) const { return k < 0 ? 0.0 : k < count ? angle[k] : core::kFullTurn; }
    _s_hd_point_ chain(int side) const { return pts[side == 0 ? 0 : half]; }

    void push(_s_hd_point_ p, int index, double a) {
        pts[count] = p;
        pattern[count] = index;
        angle[count] = a;
        ++count;
    }
};

// The point of st's ring at the angle a round the tube.
_s_hd_point_ ringPoint(const Bend& b, const Station& st, double a) {
    return linComb(1.0, st.centre, b.tubeRadius,
                   linComb(std::cos(a), st.radial, -std::sin(a), b.a));
}

// The tube ring of st over the pattern ring whose vertex k is vertex (k + offset) mod m of the
// bend's pattern. A silhouette point within kSilhouetteSnapAngle of a pattern vertex is that
// vertex, so an end ring split at its silhouette keeps exactly its m vertices; other pattern
// vertices closer than kSilhouetteClearChords of a chord to a silhouette point are left out. A
// chain given a vertex takes that one (within a chord of the silhouette point; it is drawn unless
// marked undrawn), the pattern vertices to leave out are left out, and the extras go in at their
// angles.
TubeRing tubeRing(const Bend& b, const Station& st, const ViewSplitRing& ring, int offset,
                  const RingExtras& extras = RingExtras{}) {
    TubeRing out;
    const int m = ring.count;
    out.chords = m;
    out.sil = st.turn;
    const double chord = core::kFullTurn / m;
    double angle[hd::kMaxCurveChords];
    int silVertex[2] = {-1, -1};
    double silOff[2] = {HUGE_VAL, HUGE_VAL};
    for (int k = 0; k < m; ++k) {
        double a = aroundTube(b, st, vecSub(ring.pts[k], st.centre)) - st.turn;
        a -= core::kFullTurn * std::floor(a / core::kFullTurn);
        angle[k] = a;
        for (int side = 0; side < 2; ++side) {
            const double off =
                side == 0 ? std::fmin(a, core::kFullTurn - a) : std::fabs(a - core::kPi);
            const bool given = extras.vertex[side] >= 0;
            if (given ? k == extras.vertex[side]
                      : off <= kSilhouetteSnapAngle && off < silOff[side]) {
                silVertex[side] = k;
                silOff[side] = off;
            }
        }
    }
    int first = 0;
    for (int k = 0; k < m; ++k) {
        if (k == silVertex[0])
            angle[k] = 0.0;
        else if (k == silVertex[1])
            angle[k] = core::kPi;
        if (angle[k] < angle[first])
            first = k;
    }
    for (int side = 0; side < 2; ++side)
        out.onSilhouette[side] = silVertex[side] < 0 || silOff[side] <= kSilhouetteSnapAngle;
    double extra[kMaxRingExtras];
    int extraCount = 0;
    for (int i = 0; i < extras.count && i < kMaxRingExtras; ++i) {
        double a = extras.angle[i] - st.turn;
        a -= core::kFullTurn * std::floor(a / core::kFullTurn);
        bool taken = std::fabs(a - core::kPi) <= kSilhouetteSnapAngle ||
                     a <= kSilhouetteSnapAngle || a >= core::kFullTurn - kSilhouetteSnapAngle;
        for (int k = 0; k < m && !taken; ++k)
            taken = std::fabs(a - angle[k]) <= kSilhouetteSnapAngle;
        for (int j = 0; j < extraCount && !taken; ++j)
            taken = std::fabs(a - extra[j]) <= kSilhouetteSnapAngle;
        if (taken)
            continue;
        int j = extraCount++;
        for (; j > 0 && extra[j - 1] > a; --j)
            extra[j] = extra[j - 1];
        extra[j] = a;
    }
    const double r = b.tubeRadius;
    const double clear = kSilhouetteClearChords * chord;
    bool second = silVertex[1] >= 0;
    int nextExtra = 0;
    // Puts in the extras and the second silhouette point that come before the angle a.
    auto putUpTo = [&](double a) {
        for (;;) {
            const bool secondNext = !second && core::kPi < a &&
                                    (nextExtra == extraCount || core::kPi < extra[nextExtra]);
            if (secondNext) {
                out.half = out.count;
                out.push(linComb(1.0, st.centre, -r, st.split), -1, core::kPi);
                second = true;
            } else if (nextExtra < extraCount && extra[nextExtra] < a) {
                out.push(ringPoint(b, st, st.turn + extra[nextExtra]), -1, extra[nextExtra]);
                ++nextExtra;
            } else {
                return;
            }
        }
    };
    if (silVertex[0] < 0)
        out.push(linComb(1.0, st.centre, r, st.split), -1, 0.0);
    for (int i = 0; i < m; ++i) {
        const int k = (first + i) % m;
        putUpTo(angle[k]);
        if (k == silVertex[1])
            out.half = out.count;
        if (k != silVertex[0] && k != silVertex[1] &&
            ((out.onSilhouette[0] && (angle[k] < clear || angle[k] > core::kFullTurn - clear)) ||
             (out.onSilhouette[1] && std::fabs(angle[k] - core::kPi) < clear) ||
             extras.leaveOut[k]))
            continue;
        if (extras.moved[k] && k != silVertex[0] && k != silVertex[1]) {
            double a = extras.movedTo[k] - st.turn;
            a -= core::kFullTurn * std::floor(a / core::kFullTurn);
            out.push(ringPoint(b, st, st.turn + a), (k + offset) % m, a);
        } else {
            out.push(ring.pts[k], (k + offset) % m, angle[k]);
        }
    }
    putUpTo(HUGE_VAL);
    for (int side = 0; side < 2; ++side) {
        if (extras.vertex[side] >= 0)
            out.onSilhouette[side] = out.throughRim[side] = !extras.undrawn[side];
    }
    out.centre = st.centre;
    out.phi = st.phi;
    return out;
}

// The same ring with its silhouette points the other way round (for a full turn whose last
// station carries the other silhouette first): every vertex copied, so the bands still close.
TubeRing turnedHalfRound(const TubeRing& in) {
    TubeRing out;
    out.chords = in.chords;
    out.sil = wrapAngle(in.sil + core::kPi);
    for (int i = 0; i < in.count; ++i) {
        const int k = (in.half + i) % in.count;
        out.push(in.pts[k], in.pattern[k],
                 i < in.count - in.half ? in.angle[k] - core::kPi : in.angle[k] + core::kPi);
    }
    out.half = in.count - in.half;
    out.onSilhouette[0] = in.onSilhouette[1];
    out.onSilhouette[1] = in.onSilhouette[0];
    return out;
}

// True when rings a and b step from position i and j across the same chord of the pattern.
bool sameChord(const TubeRing& a, int i, const TubeRing& b, int j) {
    const int k = a.patternAt(i);
    return k >= 0 && a.patternAt(i + 1) == (k + 1) % a.chords && b.patternAt(j) == k &&
           b.patternAt(j + 1) == (k + 1) % a.chords;
}

// An end rim seen along Z: its circle and its chords.
struct RimView {
    bool usable = false;
    _s_hd_point_ centre{}, normal{};
    int count = 0;
    _s_hd_point_ pts[kMaxTubeRingVertices];
    double orient = 1.0;  // the chords run counter-clockwise (1) or clockwise (-1) seen along Z
};

// A ring made and waiting for the next one before its faces go in.
struct PendingRing {
    Station st{};
    ViewSplitRing ring;
    int offset = 0;
    TubeRing tube;
    bool alongRim = false;  // the band up to it lies along an end rim (see advanceTo)
};

// Builds the elbow ring by ring along the bend: faces and box go to the draft as each ring is
// made. The silhouette chains and the rings seen end-on are collected apart and handed over at
// the end, so that the lines come in the documented order.
class ElbowBuilder {
public:
    ElbowBuilder(const Bend& bend, double sweep, bool fullTurn, HDProfDraft& draft)
        : bend_(bend),
          sweep_(sweep),
          fullTurn_(fullTurn),
          draft_(draft),
          size_(2.0 * bend.tubeRadius) {}

    // Makes the first ring; step is the angle between the chosen rings.
    void start(double step) {
        first_ = stationAt(bend_, 0.0, nullptr);
        if (!makeRing(first_, linComb(1.0, first_.centre, bend_.tubeRadius, first_.split),
                      prevRing_))
            return;
        const int m = prevRing_.count;
        chord_ = core::kFullTurn / m;
        // The pattern turns along the bend from the start's silhouette to the far end's (only
        // its angle modulo a chord matters): at most half a chord over the whole bend.
        patternStart_ = first_.turn;
        far_ = stationAt(bend_, sweep_, nullptr);
        if (!fullTurn_)
            patternTwist_ = std::remainder(far_.turn - first_.turn, chord_);
        firstTube_ = tubeRing(bend_, first_, prevRing_, 0);
        startRing_ = prevRing_;
        maxTwist_ = hd::kMaxRingTwist * chord_;
        // The larger of the sagittas of a ring chord and of a step of the outer equator: what
        // the chosen rings already allow the outline, so that chains no worse than that need no
        // ring between (a little over it for rounding). A caller's step above kMaxChainStep
        // counts as that step, so that the chains still put rings in.
        const double r = bend_.tubeRadius;
        const double equatorStep = std::fmin(step, kMaxChainStep);
        chainTol_ = kChainTolMargin *
                    std::fmax(r * (1.0 - std::cos(core::kPi / m)),
                              (bend_.bendRadius + r) * (1.0 - std::cos(0.5 * equatorStep)));
        const double reach =
            std::fmax(std::fmax(std::fabs(bend_.c.x), std::fabs(bend_.c.y)), std::fabs(bend_.c.z)) +
            bend_.bendRadius + r;
        chainTol_ = std::fmax(chainTol_, kChainRoundingRel * reach);
        draft_.seedBox(firstTube_.pts[0]);
        extendBox(firstTube_);
        if (!fullTurn_) {
            extendBox(prevRing_);
            draft_.addRingLines(prevRing_);
            draft_.addRingDisc(prevRing_, true);
        } else if (first_.endOn) {
            addRingOutline(firstTube_);
        }
        if (!fullTurn_) {
            startRim_ = rimView(first_, prevRing_.pts, prevRing_.count);
            ViewSplitRing farRing;
            if (!makeRing(far_, linComb(1.0, far_.centre, r, far_.split), farRing))
                return;
            farRim_ = rimView(far_, farRing.pts, farRing.count);
        }
        rimSlack_ = std::fmax(kRimSlackRel * r, kChainRoundingRel * reach);
        prev_ = first_;
        bandTube_ = firstTube_;
    }

    // Adds rings up to the one at phi, putting rings between where the silhouette turns round
    // the tube too fast; last marks the elbow's last ring.
    void advanceTo(double phi, bool last) {
        double pending[kMaxRingDepth];
        int top = 0;
        pending[top++] = phi;
        while (top > 0 && draft_.ok()) {
            const double right = pending[top - 1];
            const Station st = stationAt(bend_, right, &prev_);
            // A ring that would lie over an end rim is not put in: the band lies along the rim.
            // Only next to the rim: beyond a ring put in, the tube seen a few degrees off its
            // length comes back over the rim in the drawing, where the faces of the rings between
            // hide the rim's chords, and rings carry the silhouette round the tube there.
            bool alongRim = false;
            if ((std::fabs(wrapAngle(st.turn - prev_.turn)) > maxTwist_ || chainStraysFrom(st)) &&
                right - prev_.phi > hd::kMinRingStep && top < kMaxRingDepth &&
                added_ < hd::kMaxAddedRings) {
                const double mid = 0.5 * (prev_.phi + right);
                alongRim = (prev_.phi == first_.phi || (last && top == 1)) && onRimInDrawing(mid);
                if (!alongRim) {
                    pending[top++] = mid;
                    ++added_;
                    continue;
                }
            }
            addStation(st, last && top == 1, alongRim);
            --top;
        }
    }

    // The station of an end rim: the start's or the far end's.
    const Station& endOf(const RimView& rim) const { return &rim == &startRim_ ? first_ : far_; }

    // How far round the tube from st's silhouette point on the given side (0 or 1) the point q
    // of st's ring lies, in (-pi, pi].
    double fromSilhouette(const Station& st, _s_hd_point_ q, int side) const {
        return wrapAngle(aroundTube(bend_, st, vecSub(q, st.centre)) - st.turn - side * core::kPi);
    }

    // True when the ring at phi would lie, seen along Z, within kRimApart (or kRimApartShare of
    // the outline's allowance) of an end rim all round, and nowhere farther from the viewer than
    // it by kRimBehind. Where the tube is seen nearly along its length beside the rim, such
    // rings would hide its chords; the rim stands for them, and the chains of a band along it
    // are not drawn (they lie along the rim within that distance).
    bool onRimInDrawing(double phi) const {
        const Station st = stationAt(bend_, phi, nullptr);
        const double apart = rimApart();
        for (const RimView* rim : {&startRim_, &farRim_}) {
            if (!rim->usable)
                continue;
            const Station& end = endOf(*rim);
            bool on = true;
            for (int k = 0; k < kRimApartSamples && on; ++k) {
                const double a = core::kFullTurn * k / kRimApartSamples;
                const _s_hd_point_ p = ringPoint(bend_, st, a);
                const _s_hd_point_ q = ringPoint(bend_, end, a);
                on = std::hypot(p.x - q.x, p.y - q.y) <= apart && p.z - q.z < kRimBehind;
            }
            if (on)
                return true;
        }
        return false;
    }

    // Hands the outline to the draft, then closes the far end.
    void finish() {
        draft_.addLines(outline_.head);
        outline_ = ProlineChain{};
        if (!fullTurn_ && draft_.ok()) {
            extendBox(prevRing_);
            draft_.addRingLines(prevRing_);
            draft_.addRingDisc(prevRing_, false);
        }
    }

    ~ElbowBuilder() { releaseProline(outline_.head); }
    ElbowBuilder(const ElbowBuilder&) = delete;
    ElbowBuilder& operator=(const ElbowBuilder&) = delete;

private:
    // The pattern ring of st whose first vertex is s.
    bool makeRing(const Station& st, _s_hd_point_ s, ViewSplitRing& ring) {
        if (!splitRing(st.centre, bend_.tubeRadius, st.tangent, s, ring)) {
            draft_.fail();
            return false;
        }
        return true;
    }

    // The box takes the tube rings' points and the end rims': far from the origin the tube ring
    // at an end, worked out from the rim's, can differ from it by rounding.
    template <class Ring>
    void extendBox(const Ring& ring) {
        for (int k = 0; k < ring.count; ++k)
            draft_.extendBox(ring.pts[k]);
    }

    void addOutline(_s_hd_point_ a, _s_hd_point_ b) {
        if (!outline_.append(a, b))
            draft_.fail();
    }

    // True when a silhouette chain from the last ring to the ring of st passes farther than
    // chainTol_ from the silhouette point of the ring half way between, or from those of the rings
    // a quarter and three quarters of the way: where the silhouette turns round the tube fast (the
    // tube seen nearly end-on), its chord cuts inside it, and where it turns unevenly along the
    // bend (the tube seen nearly along its length beside an end) it strays most off the middle.
    bool chainStraysFrom(const Station& st) const {
        const Station mid = stationAt(bend_, 0.5 * (prev_.phi + st.phi), &prev_);
        const double r = bend_.tubeRadius;
        for (double side : {1.0, -1.0}) {
            const _s_hd_point_ a = linComb(1.0, prev_.centre, side * r, prev_.split);
            const _s_hd_point_ b = linComb(1.0, st.centre, side * r, st.split);
            const _s_hd_point_ m = linComb(1.0, mid.centre, side * r, mid.split);
            const _s_hd_point_ d = linComb(1.0, m, -0.5, vecAdd(a, b));
            // A chain that rounding alone puts off (or that cannot be measured) adds no ring.
            if (vecDot(d, d) > chainTol_ * chainTol_)
                return true;
        }
        for (double share : {0.25, 0.75}) {
            const Station q = stationAt(bend_, prev_.phi + share * (st.phi - prev_.phi), &prev_);
            for (double side : {1.0, -1.0}) {
                const _s_hd_point_ a = linComb(1.0, prev_.centre, side * r, prev_.split);
                const _s_hd_point_ b = linComb(1.0, st.centre, side * r, st.split);
                if (fromSegment(linComb(1.0, q.centre, side * r, q.split), a, b) > chainTol_)
                    return true;
            }
        }
        return false;
    }

    void addRingOutline(const TubeRing& ring) {
        for (int k = 0; k < ring.count; ++k)
            addOutline(ring.at(k), ring.at(k + 1));
    }

    // Which way, seen along Z, the face with the edge from p to q faces: the sign of its normal's
    // Z component (0 for none).
    static int facing(_s_hd_point_ p, _s_hd_point_ q, _s_hd_point_ third) {
        const double z = core::planCross(q.x - p.x, q.y - p.y, third.x - p.x, third.y - p.y);
        return z > 0.0 ? 1 : z < 0.0 ? -1 : 0;
    }

    // The same for the band faces of a quadrilateral: the face of faces holding p and q.
    static int facing(const PlanarQuadFaces& faces, _s_hd_point_ p, _s_hd_point_ q) {
        for (int i = 0; i < faces.count; ++i) {
            const PlanarQuadFaces::Face& f = faces.faces[i];
            for (int k = 0; k < f.count; ++k) {
                const _s_hd_point_ a = f.pts[k];
                const _s_hd_point_ b = f.pts[(k + 1) % f.count];
                if (a.x == p.x && a.y == p.y && a.z == p.z && b.x == q.x && b.y == q.y &&
                    b.z == q.z)
                    return facing(a, b, f.pts[(k + 2) % f.count]);
            }
        }
        return 0;
    }

    // The faces between rings a and b. The two silhouette chains cut the band in two halves;
    // each is walked from chain to chain, taking the next vertex of whichever ring comes first
    // round the tube, with a quadrilateral where both rings step across the same pattern chord
    // and a triangle elsewhere, so that the chains are face edges and every face is planar.
    // Where the silhouette turns between the rings, the vertices round the tube between its two
    // places lie, seen along Z, next to the chain: a face on a chain takes as its third vertex
    // the one farther round from it, so that it turns the way the tube does on its side (and a
    // quadrilateral that would reach a chain on one ring only gives way to triangles).
    void addBand(const TubeRing& a, const TubeRing& b) {
        for (int k = 0; k < kMaxTubeRingVertices; ++k)
            facingAfter_[k] = facingBefore_[k] = 0;
        // b's angles from a's first silhouette point: its own first one lies less than a
        // quarter turn round from there.
        const double twist = wrapAngle(b.sil - a.sil);
        for (int h = 0; h < 2; ++h) {
            const int i0 = h == 0 ? 0 : a.half;
            const int j0 = h == 0 ? 0 : b.half;
            const int endA = h == 0 ? a.half : a.count;
            const int endB = h == 0 ? b.half : b.count;
            // The last face takes a's last vertex when that lies farther back than b's.
            const bool aLast = a.angleAt(endA - 1) < twist + b.angleAt(endB - 1);
            int i = i0;
            int j = j0;
            while ((i < endA || j < endB) && draft_.ok()) {
                if (i < endA && j < endB && (i + 1 == endA) == (j + 1 == endB) &&
                    sameChord(a, i, b, j)) {
                    const PlanarQuadFaces faces =
                        bandQuadFaces(a.at(i), a.at(i + 1), b.at(j + 1), b.at(j), size_);
                    draft_.addFaces(faces);
                    facingAfter_[i] = facing(faces, a.at(i), a.at(i + 1));
                    facingBefore_[j] = facing(faces, b.at(j + 1), b.at(j));
                    ++i;
                    ++j;
                    continue;
                }
                const bool aFirst = a.angleAt(i + 1) <= twist + b.angleAt(j + 1);
                bool stepA;
                if (i == endA || j == endB)
                    stepA = j == endB;
                else if (i == i0 && j == j0)
                    stepA = !aFirst;
                else if (i + 1 == endA && aLast)
                    stepA = false;
                else if (j + 1 == endB && !aLast)
                    stepA = true;
                else
                    stepA = aFirst;
                if (stepA) {
                    draft_.addTri(a.at(i), a.at(i + 1), b.at(j));
                    facingAfter_[i] = facing(a.at(i), a.at(i + 1), b.at(j));
                    ++i;
                } else {
                    draft_.addTri(a.at(i), b.at(j + 1), b.at(j));
                    facingBefore_[j] = facing(b.at(j + 1), b.at(j), a.at(i));
                    ++j;
                }
            }
        }
    }

    void addStation(const Station& st, bool last, bool alongRim) {
        PendingRing next;
        next.st = st;
        next.alongRim = alongRim;
        if (last && fullTurn_) {
            // The ring closes on the first one, which may hold the silhouettes the other way
            // round after a full turn.
            next.tube =
                vecDot(st.split, first_.split) < 0.0 ? turnedHalfRound(firstTube_) : firstTube_;
        } else {
            const double r = bend_.tubeRadius;
            // The turn so far: u^2 (3 - 2u) of the whole at the fraction u of the bend, standing
            // still at both ends.
            const double u = st.phi / sweep_;
            const double start = patternStart_ + patternTwist_ * (u * u * (3.0 - 2.0 * u));
            if (last) {
                // The far end ring starts at its silhouette point, as a disc of its circle
                // does; that point is a vertex of the pattern there.
                if (!makeRing(st, linComb(1.0, st.centre, r, st.split), next.ring))
                    return;
                const int m = next.ring.count;
                const double steps = std::nearbyint(wrapAngle(st.turn - start) / chord_);
                next.offset = static_cast<int>(std::fmax(-m, std::fmin(m, steps)));
                next.offset = (next.offset % m + m) % m;
            } else if (!makeRing(st, ringPoint(bend_, st, start), next.ring)) {
                return;
            }
            next.tube = tubeRing(bend_, st, next.ring, next.offset);
            prevRing_ = next.ring;
        }
        // A ring's faces wait for the next ring: what it holds besides its pattern depends on
        // both neighbours.
        if (hasPending_)
            settlePending(next.tube);
        prev_ = st;
        if (last) {
            addRing(besideRim(st, next.ring, next.offset, next.tube, bandTube_), false, alongRim);
        } else {
            pending_ = next;
            hasPending_ = true;
        }
    }

    // Completes the waiting ring now that the next one (whose chains are those of next) is
    // known, and adds its band. Where the tube is seen nearly along its length, a ring beside a
    // drawn ring lies nearly over it, and the faces through its silhouette points, where those
    // lie between two of the drawn ring's vertices outside their chord, stand over that chord
    // and, nearer the viewer, hide it where it is the true outline. A ring drawn whole therefore
    // takes the points round the tube where its neighbours' chains lie outside its chords: the
    // faces through them then keep to its side of its chords, which run through those points.
    // An end rim takes no extra vertex (it meets a pipe's rim chord for chord): a chain of the
    // ring beside it runs through a pattern vertex instead (see underRim), or leaves out the
    // pattern vertex whose faces would stand over a rim chord (see overRimChord).
    void settlePending(const TubeRing& next) {
        const PendingRing& p = pending_;
        RingExtras extras;
        bool moved = false;
        bool leftOut = false;
        // With rounding too coarse to tell the sides of a chord the ring stays as made.
        const bool measurable = rimSlack_ <= kRimSlackShare * chainTol_;
        if (measurable && p.st.endOn) {
            const RimView drawn = rimView(p.st, p.tube.pts, p.tube.count);
            for (const TubeRing* t : std::initializer_list<const TubeRing*>{&bandTube_, &next}) {
                for (int side = 0; side < 2; ++side) {
                    if (beyondChords(drawn, t->chain(side)) > rimSlack_)
                        extras.angle[extras.count++] =
                            t->sil + (side == 0 ? 0.0 : t->angle[t->half]);
                }
            }
            // A chord beside a silhouette point spans up to one and a half pattern chords (the
            // pattern vertices within half a chord of the point are left out); drawn whole, such a
            // chord whose sagitta exceeds the outline's allowance (with the chains' margin) takes
            // its middle point.
            for (int k = 0; k < p.tube.count && extras.count < kMaxRingExtras; ++k) {
                const double span = p.tube.angleAt(k + 1) - p.tube.angle[k];
                if (bend_.tubeRadius * (1.0 - std::cos(0.5 * span)) > chainTol_)
                    extras.angle[extras.count++] = p.tube.sil + p.tube.angle[k] + 0.5 * span;
            }
        } else if (measurable) {
            for (int side = 0; side < 2; ++side) {
                extras.vertex[side] = underRim(p, side, bandTube_, next.chain(side));
                extras.undrawn[side] = extras.vertex[side] >= 0;
                if (extras.vertex[side] < 0 && p.tube.onSilhouette[side])
                    leftOut = overRimChord(p, side, extras) || leftOut;
            }
            moved = insideRimChords(p, extras);
        }
        const bool remake =
            extras.count > 0 || extras.vertex[0] >= 0 || extras.vertex[1] >= 0 || leftOut || moved;
        addRing(remake ? tubeRing(bend_, p.st, p.ring, p.offset, extras) : p.tube, p.st.endOn,
                p.alongRim);
    }

    // Adds the band from the last ring added to tube, the chains along it (for a band along an
    // end rim only those through a rim vertex) and, for a ring seen end-on (drawn whole), the ring
    // itself.
    void addRing(const TubeRing& tube, bool drawnWhole, bool alongRim) {
        extendBox(tube);
        if (startBand_) {
            startBand_ = false;
            bandTube_ = besideRim(first_, startRing_, 0, bandTube_, tube);
        }
        int before[kMaxTubeRingVertices];
        for (int k = 0; k < kMaxTubeRingVertices; ++k)
            before[k] = facingBefore_[k];
        addBand(bandTube_, tube);
        // The ring drawn whole before this one: its chords but those whose faces on either side
        // face the same way (no contour edge; the faces fold along a neighbour's chord instead).
        if (wholePending_) {
            for (int k = 0; k < bandTube_.count; ++k) {
                if (before[k] * facingAfter_[k] <= 0)
                    addOutline(bandTube_.at(k), bandTube_.at(k + 1));
            }
            wholePending_ = false;
        }
        // A chain seen end-on (within the slack of a point seen along Z, where the tube runs
        // along the view) draws nothing, and is left out.
        for (int side = 0; side < 2; ++side) {
            const _s_hd_point_ a = bandTube_.chain(side);
            const _s_hd_point_ b = tube.chain(side);
            const bool drawn = (!alongRim || bandTube_.throughRim[side] || tube.throughRim[side]) &&
                               std::hypot(b.x - a.x, b.y - a.y) > rimSlack_;
            if (drawn && bandTube_.onSilhouette[side] && tube.onSilhouette[side])
                addOutline(a, b);
        }
        wholePending_ = drawnWhole;
        bandTube_ = tube;
    }

    // The pattern vertex the chain of ring p on the given side runs through, not drawn, or -1:
    // when the silhouette point of ring p on that side lies under an end rim, between
    // the rim's circle and one of its chords seen along Z, while the ring's pattern vertices on
    // either side of it lie inside that chord (the ring lies beside the rim, with its pattern)
    // and the chain's points on the rings before and after (prev, next) lie no farther outside
    // the rim's chords than the outline may stray. When that point lies nearer the viewer than
    // the rim, the faces through it would stand over the rim's chord and hide it, while the true
    // outline there is the rim (unless the other end's face hides that chord anyway): the chain
    // runs through the pattern vertex within a chord of that point nearest the chord's end
    // towards the ring instead, whose faces keep inside the chord (the band on to the next ring
    // then reaches that ring's point from the chord's near end, over the stretch the tube hides
    // anyway), and is not drawn to or from that ring (its stretch lies along the rim, within the
    // allowance of the drawn chords). Where prev holds a pattern vertex there already, p ends that
    // run along the rim: left as made, its faces would stand over the end of the chord from prev's
    // vertex, so next may lie up to kRimRunEndShare allowances out.
    int underRim(const PendingRing& p, int side, const TubeRing& prev, _s_hd_point_ next) const {
        const _s_hd_point_ s = p.tube.chain(side);
        const double nextReach = (prev.onSilhouette[side] ? 1.0 : kRimRunEndShare) * chainTol_;
        for (const RimView* rim : {&startRim_, &farRim_}) {
            if (!rim->usable || !rimCovers(*rim, s, rimReach()) || !nearerThanRim(*rim, s))
                continue;
            int over = 0;
            for (int k = 1; k < rim->count; ++k) {
                if (beyondChord(*rim, k, s) > beyondChord(*rim, over, s))
                    over = k;
            }
            const double beyond = beyondChord(*rim, over, s);
            if (!(beyond > rimSlack_) ||
                (beyond > kRimOverShare * chainTol_ && !rimCovers(*rim, s)) ||
                beyondChords(*rim, prev.chain(side)) > chainTol_ ||
                beyondChords(*rim, next) > nextReach ||
                behindOtherEnd(*rim, rim == &startRim_ ? farRim_ : startRim_, over))
                continue;
            // The pattern vertices within a chord of s must lie inside the chord; the chain takes
            // the one nearest the chord's end towards the ring.
            const Station& end = endOf(*rim);
            const _s_hd_point_ e =
                rim->pts[chordEnd(*rim, over, vecSub(p.st.centre, end.centre), false)];
            bool beside = true;
            int nearest = -1;
            double nearestDist = HUGE_VAL;
            for (int k = 0; k < p.ring.count && beside; ++k) {
                const _s_hd_point_ q = p.ring.pts[k];
                if (std::fabs(fromSilhouette(p.st, q, side)) > chord_)
                    continue;
                beside = beyondChord(*rim, over, q) <= rimSlack_;
                const double dist = std::hypot(q.x - e.x, q.y - e.y);
                if (dist < nearestDist) {
                    nearest = k;
                    nearestDist = dist;
                }
            }
            if (beside)
                return nearest;
        }
        return -1;
    }

    // Leaves out the pattern vertex of ring p next round the tube from its silhouette point s on
    // the given side, towards the end of an end rim's chord away from the ring (seen along Z), when
    // s lies nearer the viewer than the rim, outside that chord and square beside it (and within
    // the outline's allowance of the rim's disc: the rim at the other end may lie far off), and the
    // ring's edge from s to that vertex would stand over the chord for more than kRimCoverShare of
    // the outline's allowance beyond s; true when it does. Seen nearly along the tube the outline
    // there is the rim (the tube beyond lies on the ring's side of s), so the vertex is left out:
    // the ring's edge from s then runs on to the next vertex, inside the chord, which stays in
    // sight. Where the ring leans from the rim (a few degrees off the tube's length, on a fat tube)
    // that edge can still stand over the chord: the vertices after are left out too while that
    // brings the edge's crossing of the chord nearer s, up to a quarter turn from s.
    bool overRimChord(const PendingRing& p, int side, RingExtras& extras) const {
        const _s_hd_point_ s = p.tube.chain(side);
        for (const RimView* rim : {&startRim_, &farRim_}) {
            const int over = rim->usable && nearerThanRim(*rim, s) && rimCovers(*rim, s, chainTol_)
                                 ? chordBeside(*rim, s)
                                 : -1;
            if (over < 0)
                continue;
            const Station& end = endOf(*rim);
            const _s_hd_point_ a = rim->pts[over];
            const _s_hd_point_ b = rim->pts[(over + 1) % rim->count];
            const _s_hd_point_ e =
                rim->pts[chordEnd(*rim, over, vecSub(p.st.centre, end.centre), true)];
            const double len = std::hypot(b.x - a.x, b.y - a.y);
            // How far q seen along Z lies from s along the chord, towards e above 0.
            auto along = [&](_s_hd_point_ q) {
                const double d = ((q.x - s.x) * (b.x - a.x) + (q.y - s.y) * (b.y - a.y)) / len;
                return (e.x - s.x) * (b.x - a.x) + (e.y - s.y) * (b.y - a.y) < 0.0 ? -d : d;
            };
            int next = -1;
            double nearest = HUGE_VAL;
            for (int k = 0; k < p.ring.count; ++k) {
                const _s_hd_point_ q = p.ring.pts[k];
                const double round = std::fabs(fromSilhouette(p.st, q, side));
                if (along(q) > 0.0 && round >= kSilhouetteClearChords * chord_ && round < nearest) {
                    next = k;
                    nearest = round;
                }
            }
            if (next < 0)
                continue;
            // How far along the chord beyond s the edge from s to vertex k stands over it (where it
            // crosses the chord's line).
            const double ds = beyondChord(*rim, over, s);
            auto cover = [&](int k) {
                const _s_hd_point_ q = p.ring.pts[k];
                const double dq = beyondChord(*rim, over, q);
                return (dq < 0.0 ? ds / (ds - dq) : 1.0) * along(q);
            };
            if (!(cover(next) > kRimCoverShare * chainTol_))
                continue;
            // Left out, and so are the vertices after it round the tube while the edge from s to
            // the next one still stands over the chord that much and the edge to the one after
            // (within a quarter turn of s) would stand over it less.
            const int m = p.ring.count;
            const int way = fromSilhouette(p.st, p.ring.pts[next], side) < 0.0 ? m - 1 : 1;
            extras.leaveOut[next] = true;
            for (int i = 0, k = (next + way) % m; i < m; ++i, k = (k + way) % m) {
                const int after = (k + way) % m;
                if (std::fabs(fromSilhouette(p.st, p.ring.pts[after], side)) >=
                        kRimCoverTurnMost * core::kFullTurn ||
                    !(cover(k) > kRimCoverShare * chainTol_) || !(cover(after) < cover(k)) ||
                    k == extras.vertex[0] || k == extras.vertex[1])
                    break;
                extras.leaveOut[k] = true;
            }
            return true;
        }
        return false;
    }

    // Moves round the tube each pattern vertex of ring p (but those the silhouette points clear,
    // left out or taken by a chain) that lies, seen along Z, nearer the viewer than an end rim,
    // under its disc (with the ring for kRimMoveChords of a chord either way: where the ring
    // comes out of the disc nearby, the tube beyond is the outline there and the rim's chord is
    // hidden anyway) and outside one of its chords square beside it, to the nearest point of the
    // ring within kRimMoveChords of a chord that lies rimApart() inside that chord and inside the
    // rim's other chords; true when one moves. Seen a few degrees off the tube's length at an end
    // where the tube beyond comes nearer the viewer, the rings there shift sideways in the drawing
    // and their vertices come out between a rim chord and the rim's circle: the faces through them
    // would hide the chord, where the rim is the outline and the ring's own chord no contour edge.
    bool insideRimChords(const PendingRing& p, RingExtras& extras) const {
        bool any = false;
        const double margin = rimApart();
        for (int k = 0; k < p.ring.count; ++k) {
            const _s_hd_point_ q = p.ring.pts[k];
            const double a = std::fabs(fromSilhouette(p.st, q, 0));
            if (std::fmin(a, core::kPi - a) < kSilhouetteClearChords * chord_ ||
                extras.leaveOut[k] || k == extras.vertex[0] || k == extras.vertex[1])
                continue;
            const double at = aroundTube(bend_, p.st, vecSub(q, p.st.centre));
            for (const RimView* rim : {&startRim_, &farRim_}) {
                const int over =
                    rim->usable && nearerThanRim(*rim, q) && rimCovers(*rim, q) &&
                            rimCovers(*rim, ringPoint(bend_, p.st, at + kRimMoveChords * chord_)) &&
                            rimCovers(*rim, ringPoint(bend_, p.st, at - kRimMoveChords * chord_))
                        ? chordBeside(*rim, q)
                        : -1;
                if (over < 0)
                    continue;
                // Below 0 where the ring's point t round from q lies far enough inside the chord.
                auto beyond = [&](double t) {
                    return beyondChord(*rim, over, ringPoint(bend_, p.st, at + t)) + margin;
                };
                double best = HUGE_VAL;
                for (double reach : {kRimMoveChords * chord_, -kRimMoveChords * chord_}) {
                    if (!(beyond(reach) < 0.0))
                        continue;
                    double out = 0.0;
                    double in = reach;
                    for (int step = 0; step < kRimMoveSteps; ++step) {
                        const double mid = 0.5 * (out + in);
                        (beyond(mid) < 0.0 ? in : out) = mid;
                    }
                    if (std::fabs(in) < std::fabs(best))
                        best = in;
                }
                if (best == HUGE_VAL || beyondChords(*rim, ringPoint(bend_, p.st, at + best)) > 0.0)
                    continue;
                extras.moved[k] = true;
                extras.movedTo[k] = at + best;
                any = true;
                break;
            }
        }
        return any;
    }

    // The end ring at end (its pattern ring ring, made as made) as the band to the ring beside it
    // takes it. Seen nearly along the tube at an end, the silhouette turns round the tube between
    // the rim and the ring beside it, and that ring's silhouette points lie by the rim in the
    // drawing, away from the rim's own: where one lies outside a rim chord, nearer the viewer than
    // the rim, the faces through it hide that chord, and the outline runs from the chord's end
    // away from the ring (seen along Z) to the point. Each chain then runs through that end of
    // the chord (see rimChainVertex) and is drawn: the band folds along it, and it keeps to the
    // true outline within the allowance. Where it would stray, the chain runs instead, not drawn,
    // from the chord's end towards the ring: the tube hides the rim on that side of the point, and
    // the band's faces from that end keep off the rest of the chord. A chain of the ring beside
    // that runs through a pattern vertex (see underRim) runs, not drawn, from the rim's vertex of
    // the same place in the pattern. Otherwise, or when the silhouette turns less than maxTwist_
    // between them, the ring stays as made.
    TubeRing besideRim(const Station& end, const ViewSplitRing& ring, int offset,
                       const TubeRing& made, const TubeRing& beside) const {
        if (fullTurn_ || !(rimSlack_ <= kRimSlackShare * chainTol_) ||
            !(std::fabs(wrapAngle(beside.sil - made.sil)) > maxTwist_))
            return made;
        const RimView rim = rimView(end, ring.pts, ring.count);
        // The ring's split turned to the first silhouette point of the ring beside it.
        Station turned = end;
        const _s_hd_point_ split = vecSub(beside.chain(0), beside.centre);
        turned.split = vecNormalize(linComb(1.0, split, -vecDot(split, end.tangent), end.tangent));
        if (!rim.usable || vecDot(turned.split, turned.split) == 0.0)
            return made;
        turned.turn = aroundTube(bend_, end, turned.split);
        RingExtras extras;
        for (int side = 0; side < 2; ++side) {
            const _s_hd_point_ shift = vecSub(beside.centre, end.centre);
            int v = beside.onSilhouette[side]
                        ? rimChainVertex(rim, end, beside.chain(side), shift, beside.phi)
                        : -1;
            // Failing that, the chain runs, not drawn, from the chord's end towards the ring.
            const int over =
                v < 0 && beside.onSilhouette[side] && nearerThanRim(rim, beside.chain(side))
                    ? chordBeside(rim, beside.chain(side))
                    : -1;
            if (over >= 0) {
                v = chordEnd(rim, over, shift, false);
                extras.undrawn[side] = true;
            }
            // A chain through a pattern vertex of the ring beside runs, not drawn, from the rim's
            // vertex of the same place in the pattern.
            const int k = beside.patternAt(side == 0 ? 0 : beside.half);
            if (!beside.onSilhouette[side] && k >= 0) {
                v = ((k - offset) % ring.count + ring.count) % ring.count;
                extras.undrawn[side] = true;
            }
            if (v < 0 || !(std::fabs(fromSilhouette(turned, ring.pts[v], side)) < chord_))
                return made;
            extras.vertex[side] = v;
        }
        if (extras.vertex[0] == extras.vertex[1])
            return made;
        return tubeRing(bend_, turned, ring, offset, extras);
    }

    // The rim vertex a chain from the silhouette point s of the ring beside the rim (its centre
    // shift away from the rim's, at besidePhi along the bend) runs through, or -1: s lies nearer
    // the viewer than the rim and outside one of its chords seen along Z, square beside it; the
    // vertex is the end of that chord away from the ring, and the chain from it to s keeps within
    // the outline's allowance of the rim or of the true silhouette between the rim and the ring
    // (its true outline there, seen along Z and in depth). The tube's straight line from the rim
    // to s does not count: it lies on the tube but, where the silhouette turns round the tube
    // between them, not on its outline, and a chain kept to it was drawn up to 1.6 allowances off
    // the outline.
    int rimChainVertex(const RimView& rim, const Station& end, _s_hd_point_ s, _s_hd_point_ shift,
                       double besidePhi) const {
        const int over = nearerThanRim(rim, s) ? chordBeside(rim, s) : -1;
        if (over < 0)
            return -1;
        const int v = chordEnd(rim, over, shift, true);
        const SilhouetteRun run = silhouetteRun(end, besidePhi);
        for (int k = 1; k < kRimChainSamples; ++k) {
            const _s_hd_point_ q = linComb(
                1.0, rim.pts[v], static_cast<double>(k) / kRimChainSamples, vecSub(s, rim.pts[v]));
            if (!(std::fmin(fromRim(rim, q), fromSilhouette(q, run)) <= chainTol_))
                return -1;
        }
        return v;
    }

    // The rim chord that p seen along Z lies farthest outside (by more than the slack) of those it
    // lies square beside, or -1.
    int chordBeside(const RimView& rim, _s_hd_point_ p) const {
        int over = -1;
        double most = rimSlack_;
        for (int k = 0; k < rim.count; ++k) {
            const double beyond = beyondChord(rim, k, p);
            if (beyond > most && besideChord(rim, k, p)) {
                over = k;
                most = beyond;
            }
        }
        return over;
    }

    // The end of the rim's chord k away from (or towards) a ring whose centre lies shift from the
    // rim's, seen along Z.
    static int chordEnd(const RimView& rim, int k, _s_hd_point_ shift, bool away) {
        const _s_hd_point_ a = rim.pts[k];
        const _s_hd_point_ b = rim.pts[(k + 1) % rim.count];
        const bool aAway = a.x * shift.x + a.y * shift.y < b.x * shift.x + b.y * shift.y;
        return aAway == away ? k : (k + 1) % rim.count;
    }

    // The true silhouette of the tube between the end ring at end and the ring at besidePhi,
    // where it turns round the tube: both chains of the silhouette points of the end and of
    // kRimChainSamples stations on to besidePhi.
    struct SilhouetteRun {
        _s_hd_point_ pts[2][kRimChainSamples + 1];
    };
    SilhouetteRun silhouetteRun(const Station& end, double besidePhi) const {
        SilhouetteRun run;
        Station st = end;
        for (int k = 0; k <= kRimChainSamples; ++k) {
            if (k > 0) {
                const double phi =
                    end.phi + (besidePhi - end.phi) * static_cast<double>(k) / kRimChainSamples;
                st = stationAt(bend_, phi, &st);
            }
            run.pts[0][k] = linComb(1.0, st.centre, bend_.tubeRadius, st.split);
            run.pts[1][k] = linComb(1.0, st.centre, -bend_.tubeRadius, st.split);
        }
        return run;
    }

    // How far p lies from the silhouette run.
    static double fromSilhouette(_s_hd_point_ p, const SilhouetteRun& run) {
        double best = HUGE_VAL;
        for (int k = 1; k <= kRimChainSamples; ++k) {
            for (int side = 0; side < 2; ++side)
                best = std::fmin(best, fromSegment(p, run.pts[side][k - 1], run.pts[side][k]));
        }
        return best;
    }

    // How far p lies from the rim's circle.
    double fromRim(const RimView& rim, _s_hd_point_ p) const {
        const _s_hd_point_ d = vecSub(p, rim.centre);
        const double h = vecDot(d, rim.normal);
        const _s_hd_point_ inPlane = linComb(1.0, d, -h, rim.normal);
        return std::hypot(std::sqrt(vecDot(inPlane, inPlane)) - bend_.tubeRadius, h);
    }

    // How far p lies from the segment from a to b.
    static double fromSegment(_s_hd_point_ p, _s_hd_point_ a, _s_hd_point_ b) {
        const _s_hd_point_ ab = vecSub(b, a);
        const double len2 = vecDot(ab, ab);
        const double t =
            len2 > 0.0 ? std::fmax(0.0, std::fmin(1.0, vecDot(vecSub(p, a), ab) / len2)) : 0.0;
        const _s_hd_point_ d = vecSub(p, linComb(1.0, a, t, ab));
        return std::sqrt(vecDot(d, d));
    }

    // True when p seen along Z lies square beside the rim's chord k, between its ends.
    static bool besideChord(const RimView& rim, int k, _s_hd_point_ p) {
        const _s_hd_point_ a = rim.pts[k];
        const _s_hd_point_ b = rim.pts[(k + 1) % rim.count];
        const double t = (p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y);
        return t >= 0.0 && t <= (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
    }

    // True when the middle of the rim's chord k lies behind the other end's flat face (inside
    // its chords seen along Z, and farther from the viewer than its plane there): the chord is
    // hidden whatever the tube does.
    bool behindOtherEnd(const RimView& rim, const RimView& other, int k) const {
        if (!other.usable)
            return false;
        const _s_hd_point_ mid = linComb(0.5, rim.pts[k], 0.5, rim.pts[(k + 1) % rim.count]);
        return beyondChords(other, mid) < -rimSlack_ && !nearerThanRim(other, mid);
    }

    // How far outside an end rim's circle a point still lies along it for the hide pass (see
    // kRimReachShare).
    double rimReach() const { return std::fmin(kRimReachMost, kRimReachShare * chainTol_); }

    // How far apart the hide pass tells a ring's faces from an end rim's chords (see kRimApart).
    double rimApart() const { return std::fmin(kRimApart, kRimApartShare * chainTol_); }

    // True when p lies nearer the viewer than the rim's plane straight behind or before it.
    bool nearerThanRim(const RimView& rim, _s_hd_point_ p) const {
        const double depth = rim.centre.z - (rim.normal.x * (p.x - rim.centre.x) +
                                             rim.normal.y * (p.y - rim.centre.y)) /
                                                rim.normal.z;
        return p.z < depth - rimSlack_;
    }

    // True when the line along Z through p meets the rim's disc (its circle within the slack),
    // or comes within the given distance beyond it.
    bool rimCovers(const RimView& rim, _s_hd_point_ p, double beyond = 0.0) const {
        const double lambda = vecDot(vecSub(rim.centre, p), rim.normal) / rim.normal.z;
        const _s_hd_point_ d = vecSub(linComb(1.0, p, lambda, kViewAxis), rim.centre);
        const double reach = bend_.tubeRadius + rimSlack_ + beyond;
        return vecDot(d, d) <= reach * reach;
    }

    // How far p seen along Z lies beyond the line of the rim's chord k (below 0 on its inner
    // side); 0 for a chord of no length.
    static double beyondChord(const RimView& rim, int k, _s_hd_point_ p) {
        const _s_hd_point_ a = rim.pts[k];
        const _s_hd_point_ b = rim.pts[(k + 1) % rim.count];
        const double len = std::hypot(b.x - a.x, b.y - a.y);
        return len > 0.0 ? -rim.orient * core::planTurn(a, b, p) / len : 0.0;
    }

    // How far p seen along Z lies outside the rim's chords: the most it lies beyond one of them.
    static double beyondChords(const RimView& rim, _s_hd_point_ p) {
        double beyond = beyondChord(rim, 0, p);
        for (int k = 1; k < rim.count; ++k)
            beyond = std::fmax(beyond, beyondChord(rim, k, p));
        return beyond;
    }

    // The end rim of the pattern ring ring at st, seen along Z.
    static RimView rimView(const Station& st, const _s_hd_point_* pts, int count) {
        RimView rim;
        rim.centre = st.centre;
        rim.normal = st.tangent;
        rim.count = count;
        double area = 0.0;
        for (int k = 0; k < count; ++k) {
            rim.pts[k] = pts[k];
            const _s_hd_point_ a = pts[k];
            const _s_hd_point_ b = pts[(k + 1) % count];
            area += core::planCross(a.x, a.y, b.x, b.y);
        }
        rim.orient = area < 0.0 ? -1.0 : 1.0;
        rim.usable = std::fabs(st.tangent.z) >= kRimSeenSlant;
        return rim;
    }

    Bend bend_;
    double sweep_;
    bool fullTurn_;
    HDProfDraft& draft_;
    double size_;
    double chord_ = 0.0;
    double patternStart_ = 0.0;
    double patternTwist_ = 0.0;
    double maxTwist_ = 0.0;
    double chainTol_ = 0.0;
    int added_ = 0;
    Station first_{};
    Station far_{};  ///< the station at the far end (sweep_)
    Station prev_{};
    TubeRing firstTube_;
    TubeRing bandTube_;  // the last ring whose band is added
    PendingRing pending_;
    bool hasPending_ = false;
    RimView startRim_;
    RimView farRim_;
    double rimSlack_ = 0.0;
    ViewSplitRing prevRing_;     // the last pattern ring made: the far end's at the end
    ViewSplitRing startRing_;    // the start's pattern ring
    bool wholePending_ = false;  // bandTube_ is drawn whole, its chords wait for its next band
    // Which way the faces of the last band face on the chords of its rings (see facing): on a's
    // chord k after it, on b's chord k before it.
    int facingAfter_[kMaxTubeRingVertices] = {};
    int facingBefore_[kMaxTubeRingVertices] = {};
    bool startBand_ = true;  // the band beside the start rim is still to come
    ProlineChain outline_;
};

// The angles in (0, sweep) at which the tangent comes nearest the view axis, when it comes near
// enough that rings a chosen step apart could miss the silhouette's turn there, and which no
// chosen ring already holds or stands for, seen end-on (at most two: the tangent comes nearest
// +Z at one and -Z at the other), ascending. The tangent there leans from Z by the slant s = |axis
// . Z|, and within about s of that angle along the bend the silhouette turns half round the tube
// (the ring is outline all round, and drawn whole, where s is nil). Seen from two rings on either
// side, a turn by half a turn less the part outside them looks like a small turn back, so the rings
// would join each silhouette to the wrong one; a ring at the nearest angle itself leaves each
// side of it a turn below a quarter, which the rings put in between follow. replaced[i] is the
// chosen ring (1 to n - 1) that the ring at out[i] stands in for, 0 for none.
int nearAxisAngles(const Bend& b, double sweep, int n, double* out, int* replaced) {
    const _s_hd_point_ p = linComb(1.0, kViewAxis, -vecDot(kViewAxis, b.a), b.a);
    const double len = std::sqrt(vecDot(p, p));
    if (!(len > 0.0) || !(std::fabs(vecDot(kViewAxis, b.a)) < kNearAxisSlantSteps * sweep / n))
        return 0;
    // tangent(phi) = (-sin phi) u0 + (cos phi) v0 runs along p at phi0.
    const double phi0 = std::atan2(-vecDot(p, b.u0), vecDot(p, b.v0));
    int count = 0;
    for (int side = 0; side < 2; ++side) {
        double phi = phi0 + side * core::kPi;
        phi = phi - core::kFullTurn * std::floor(phi / core::kFullTurn);
        if (!(phi > hd::kMinRingStep && phi < sweep - hd::kMinRingStep))
            continue;
        // A chosen ring seen end-on there already is the turn's ring: one put in beside it would
        // make a band too thin to face either way, and the drawn ring no contour edge.
        const double k = std::nearbyint(phi / sweep * n);
        const double nearest = k * sweep / n;
        if (std::fabs(phi - nearest) > hd::kMinRingStep && !stationAt(b, nearest, nullptr).endOn) {
            // A ring seen end-on there stands in for a chosen ring close beside it (not an end
            // ring): the chosen ring would leave a band too thin to face either way.
            const bool stands = stationAt(b, phi, nullptr).endOn && k > 0.0 && k < n &&
                                std::fabs(phi - nearest) <= kEndOnStandInSteps * sweep / n;
            replaced[count] = stands ? static_cast<int>(k) : 0;
            out[count++] = phi;
        }
    }
    if (count == 2 && out[1] < out[0]) {
        const double t = out[0];
        out[0] = out[1];
        out[1] = t;
        const int r = replaced[0];
        replaced[0] = replaced[1];
        replaced[1] = r;
    }
    return count;
}

}  // namespace

_s_hd_prof_* ep_divide_tor(double r, double angle, _s_hd_point_ c, _s_hd_point_ s,
                           _s_hd_point_ axis, int n) {
    if (!std::isfinite(r) || !std::isfinite(angle) || !isFinitePoint(c) || !isFinitePoint(s) ||
        !isFinitePoint(axis))
        return nullptr;
    if (!(r >= hd::kMinDiscRadius) || !(angle > 0.0) || angle > core::kFullTurn + hd::kSweepTol ||
        n < 0 || n > hd::kMaxArcChords)
        return nullptr;
    Bend b;
    b.c = c;
    b.a = vecNormalize(axis);
    if (vecDot(b.a, b.a) == 0.0)
        return nullptr;
    const _s_hd_point_ off = vecSub(s, c);
    const double offLen = std::sqrt(vecDot(off, off));
    const double along = vecDot(off, b.a);
    if (!(offLen >= hd::kMinDiscRadius) || !std::isfinite(offLen) ||
        std::fabs(along) > hd::kBendPlaneTol * offLen)
        return nullptr;
    const _s_hd_point_ inPlane = linComb(1.0, off, -along, b.a);
    b.bendRadius = std::sqrt(vecDot(inPlane, inPlane));
    b.u0 = vecScale(1.0 / b.bendRadius, inPlane);
    b.v0 = vecCross(b.a, b.u0);
    b.tubeRadius = r;
    const bool fullTurn = angle >= core::kFullTurn - hd::kSweepTol;
    const double sweep = fullTurn ? core::kFullTurn : angle;
    // The bend takes the chords of an arc of the outer equator's radius.
    if (n == 0)
        n = getArcDivideNum(c, b.bendRadius + r, 0.0, sweep);

    double nearAxis[2];
    int replaced[2] = {0, 0};
    const int nearAxisCount = nearAxisAngles(b, sweep, n, nearAxis, replaced);
    HDProfDraft draft;
    ElbowBuilder builder(b, sweep, fullTurn, draft);
    builder.start(sweep / n);
    int nextNearAxis = 0;
    for (int k = 1; k <= n && draft.ok(); ++k) {
        const double phi = k == n ? sweep : sweep * k / n;
        // Beside an end rim, within kRimApart of it, the rim stands for that ring.
        for (; nextNearAxis < nearAxisCount && nearAxis[nextNearAxis] < phi; ++nextNearAxis) {
            if (!builder.onRimInDrawing(nearAxis[nextNearAxis]))
                builder.advanceTo(nearAxis[nextNearAxis], false);
        }
        if (k != replaced[0] && k != replaced[1])
            builder.advanceTo(phi, k == n);
    }
    builder.finish();
    return draft.finish();
}

}  // namespace geolib
