// Tessellator of the pipe elbow: a segment of a torus, drawn by its outline and its end rims.
//
// The tube is cut into rings (stations) along the bend. Each ring is a circle of the tube's
// radius about a point of the centre line, in the plane normal to the bend's tangent there, and
// is divided like a disc (viewSplitRing's rule), so that an elbow's end ring and the rim of a
// pipe of the same radius coincide chord for chord. The tube's normal along a ring is the
// ring's own radial direction, so the ring's two silhouette points are where that direction is
// normal to Z: centre +- r * unit(Z x t), t the tangent, exactly a disc's split points. Every
// ring starts at one silhouette point and has the other half way round; consecutive rings keep
// the same index for the same silhouette (the sign of the split is carried along the bend). The
// lines along the tube are the two chains of silhouette points, (ring k, 0) -> (ring k+1, 0) and
// (ring k, m/2) -> (ring k+1, m/2): face edges on the true outline, within a chord's sagitta of
// it. They are not the faces' own outline (the edges between a face turned towards the viewer
// and one turned away): where the silhouette turns round the tube, every ring's vertices turn
// with it, the faces between two rings lean, and on the saddle side (towards the bend centre)
// a leaning face turns the other way to its neighbours. The faces' outline then runs a chord or
// two inside the true one, a line no draughtsman would draw, while the faces themselves still
// cover the tube's true outline to within the sagitta, so nothing behind shows through. A ring
// seen end-on (the tube seen along its length) is outline all round and is drawn whole.
#include <cmath>
#include <initializer_list>

#include "hd_tessellators.h"
#include "hidden_line/model/hd_builders.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

namespace {

constexpr _s_hd_point_ kViewAxis = {0.0, 0.0, 1.0};
/// A silhouette chain may stray this much over the chord sagittas the chosen rings allow before a
/// ring is put in: rounding alone never adds one.
constexpr double kChainTolMargin = 1.01;
/// Far from the origin the chains' points carry rounding errors of their coordinates' size: a
/// chain is never asked to keep closer than this fraction of them (an elbow at 1e308 would
/// otherwise fill itself with rings to the limit).
constexpr double kChainRoundingRel = 1e-9;
/// Depth of the ring subdivision between two chosen rings: far more than halving a full turn
/// down to kMinRingStep needs.
constexpr int kMaxRingDepth = 64;

// The bend: centre c, unit axis a, unit radial u0 towards the start, v0 = a x u0, so that the
// angle phi runs counter-clockwise about a.
struct Bend {
    _s_hd_point_ c, a, u0, v0;
    double bendRadius;
    double tubeRadius;
};

// One ring of the tube.
struct Station {
    double phi;
    _s_hd_point_ centre;
    _s_hd_point_ radial;   // unit, from the bend centre
    _s_hd_point_ tangent;  // unit, along the bend
    bool endOn;            // the tube is seen along its length here: the whole ring is outline
    _s_hd_point_ split;    // unit, from the ring's centre to its first vertex
    double turn;           // the split's angle round the tube, from the radial towards the axis
};

double wrapAngle(double x) {
    return std::remainder(x, core::kFullTurn);
}

// The ring at phi, its split on the same silhouette as prev's (when there is one).
Station stationAt(const Bend& b, double phi, const Station* prev) {
    Station st;
    st.phi = phi;
    st.radial = linComb(std::cos(phi), b.u0, std::sin(phi), b.v0);
    st.tangent = linComb(-std::sin(phi), b.u0, std::cos(phi), b.v0);
    st.centre = linComb(1.0, b.c, b.bendRadius, st.radial);
    // Seen along the tube the silhouette points are undefined: the ring splits along the bend
    // axis, the limit of its neighbours' splits, so the tube does not twist there.
    st.endOn = std::fabs(std::fabs(st.tangent.z) - 1.0) <= hd::kFacingTol;
    st.split = st.endOn ? b.a : unitCross(kViewAxis, st.tangent);
    st.turn = std::atan2(vecDot(st.split, b.a), vecDot(st.split, st.radial));
    if (prev != nullptr && std::fabs(wrapAngle(st.turn - prev->turn)) > 0.5 * core::kPi) {
        st.split = vecNegate(st.split);
        st.turn = wrapAngle(st.turn + core::kPi);
    }
    return st;
}

// Builds the elbow ring by ring along the bend: faces and box go to the draft as each ring is
// made. The silhouette chains and the rings seen end-on are collected apart and handed over at
// the end, so that the lines come in the documented order.
class ElbowBuilder {
public:
    ElbowBuilder(const Bend& bend, bool fullTurn, HDProfDraft& draft)
        : bend_(bend), fullTurn_(fullTurn), draft_(draft), size_(2.0 * bend.tubeRadius) {}

    // Makes the first ring; step is the angle between the chosen rings.
    void start(double step) {
        first_ = stationAt(bend_, 0.0, nullptr);
        if (!makeRing(first_, firstRing_))
            return;
        const int m = firstRing_.count;
        maxTwist_ = hd::kMaxRingTwist * core::kFullTurn / m;
        // The larger of the sagittas of a ring chord and of a step of the outer equator: what
        // the chosen rings already allow the outline, so that chains no worse than that need no
        // ring between (a little over it for rounding).
        const double r = bend_.tubeRadius;
        chainTol_ =
            kChainTolMargin * std::fmax(r * (1.0 - std::cos(core::kPi / m)),
                                        (bend_.bendRadius + r) * (1.0 - std::cos(0.5 * step)));
        const double reach =
            std::fmax(std::fmax(std::fabs(bend_.c.x), std::fabs(bend_.c.y)), std::fabs(bend_.c.z)) +
            bend_.bendRadius + r;
        chainTol_ = std::fmax(chainTol_, kChainRoundingRel * reach);
        draft_.seedBox(firstRing_.pts[0]);
        extendBox(firstRing_);
        if (!fullTurn_) {
            draft_.addRingLines(firstRing_);
            draft_.addRingDisc(firstRing_, true);
        } else if (first_.endOn) {
            addRingOutline(firstRing_);
        }
        prev_ = first_;
        prevRing_ = firstRing_;
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
            if ((std::fabs(wrapAngle(st.turn - prev_.turn)) > maxTwist_ || chainStraysFrom(st)) &&
                right - prev_.phi > hd::kMinRingStep && top < kMaxRingDepth &&
                added_ < hd::kMaxAddedRings) {
                pending[top++] = 0.5 * (prev_.phi + right);
                ++added_;
                continue;
            }
            addStation(st, last && top == 1);
            --top;
        }
    }

    // Hands the outline to the draft, then closes the far end.
    void finish() {
        draft_.addLines(outline_.head);
        outline_ = ProlineChain{};
        if (!fullTurn_ && draft_.ok()) {
            draft_.addRingLines(prevRing_);
            draft_.addRingDisc(prevRing_, false);
        }
    }

    ~ElbowBuilder() { releaseProline(outline_.head); }
    ElbowBuilder(const ElbowBuilder&) = delete;
    ElbowBuilder& operator=(const ElbowBuilder&) = delete;

private:
    bool makeRing(const Station& st, ViewSplitRing& ring) {
        const double r = bend_.tubeRadius;
        if (!splitRing(st.centre, r, st.tangent, linComb(1.0, st.centre, r, st.split), ring)) {
            draft_.fail();
            return false;
        }
        return true;
    }

    void extendBox(const ViewSplitRing& ring) {
        for (int k = 0; k < ring.count; ++k)
            draft_.extendBox(ring.pts[k]);
    }

    void addOutline(_s_hd_point_ a, _s_hd_point_ b) {
        if (!outline_.append(a, b))
            draft_.fail();
    }

    // True when a silhouette chain from the last ring to the ring of st passes farther than
    // chainTol_ from the silhouette point of the ring half way between: where the silhouette
    // turns round the tube fast (the tube seen nearly end-on), its chord cuts inside it.
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
        return false;
    }

    void addRingOutline(const ViewSplitRing& ring) {
        for (int k = 0; k < ring.count; ++k)
            addOutline(ring.pts[k], ring.pts[(k + 1) % ring.count]);
    }

    void addStation(const Station& st, bool last) {
        ViewSplitRing ring;
        int shift = 0;
        if (last && fullTurn_) {
            // The ring closes on the first one, which may hold the silhouettes the other way
            // round after a full turn.
            ring = firstRing_;
            if (vecDot(st.split, first_.split) < 0.0)
                shift = ring.count / 2;
        } else {
            if (!makeRing(st, ring))
                return;
            extendBox(ring);
        }
        const int m = ring.count;
        for (int k = 0; k < m; ++k)
            draft_.addFaces(ringBandFaces(prevRing_, ring, shift, k, size_));
        const int half = m / 2;
        addOutline(prevRing_.pts[0], ring.pts[shift % m]);
        addOutline(prevRing_.pts[half], ring.pts[(half + shift) % m]);
        // The first and last rings of an elbow with ends are its end rims, drawn apart.
        if (st.endOn && !last)
            addRingOutline(ring);
        prev_ = st;
        prevRing_ = ring;
    }

    Bend bend_;
    bool fullTurn_;
    HDProfDraft& draft_;
    double size_;
    double maxTwist_ = 0.0;
    double chainTol_ = 0.0;
    int added_ = 0;
    Station first_{};
    Station prev_{};
    ViewSplitRing firstRing_;
    ViewSplitRing prevRing_;
    ProlineChain outline_;
};

// The angles in (0, sweep) at which the tube is seen end-on and which no chosen ring already
// holds (at most two: the tangent runs along +Z at one and along -Z at the other), ascending.
int endOnAngles(const Bend& b, double sweep, int n, double* out) {
    const _s_hd_point_ p = linComb(1.0, kViewAxis, -vecDot(kViewAxis, b.a), b.a);
    const double len = std::sqrt(vecDot(p, p));
    if (!(len > 0.0))
        return 0;
    // tangent(phi) = (-sin phi) u0 + (cos phi) v0 runs along p at phi0.
    const double phi0 = std::atan2(-vecDot(p, b.u0), vecDot(p, b.v0));
    int count = 0;
    for (int side = 0; side < 2; ++side) {
        double phi = phi0 + side * core::kPi;
        phi = phi - core::kFullTurn * std::floor(phi / core::kFullTurn);
        if (!(phi > hd::kMinRingStep && phi < sweep - hd::kMinRingStep))
            continue;
        const double tz = -std::sin(phi) * b.u0.z + std::cos(phi) * b.v0.z;
        if (std::fabs(std::fabs(tz) - 1.0) > hd::kFacingTol)
            continue;
        const double nearest = std::nearbyint(phi / sweep * n) * sweep / n;
        if (std::fabs(phi - nearest) > hd::kMinRingStep)
            out[count++] = phi;
    }
    if (count == 2 && out[1] < out[0]) {
        const double t = out[0];
        out[0] = out[1];
        out[1] = t;
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

    double endOn[2];
    const int endOnCount = endOnAngles(b, sweep, n, endOn);
    HDProfDraft draft;
    ElbowBuilder builder(b, fullTurn, draft);
    builder.start(sweep / n);
    int nextEndOn = 0;
    for (int k = 1; k <= n && draft.ok(); ++k) {
        const double phi = k == n ? sweep : sweep * k / n;
        while (nextEndOn < endOnCount && endOn[nextEndOn] < phi)
            builder.advanceTo(endOn[nextEndOn++], false);
        builder.advanceTo(phi, k == n);
    }
    builder.finish();
    return draft.finish();
}

}  // namespace geolib
