// Plan-view (x, y) tests shared by the functions and the clipping side. Internal, not exported.
// They read only the members x and y, so they serve any point type.
#ifndef VOGEBASIC_CORE_PLAN_H
#define VOGEBASIC_CORE_PLAN_H

namespace geolib {
namespace core {

/// The plan cross product a x b = ax.by - ay.bx: positive when b turns counter-clockwise from a.
inline double planCross(double ax, double ay, double bx, double by) {
    return ax * by - ay * bx;
}

/// The orientation test: twice the signed plan area of the triangle o, a, b, positive when b
/// lies left of o -> a (the triangle runs counter-clockwise), zero when the three are collinear.
template <class P>
double planTurn(const P& o, const P& a, const P& b) {
    return planCross(a.x - o.x, a.y - o.y, b.x - o.x, b.y - o.y);
}

/// The crossing rule for one edge between vertex pi and the vertex pj before it: the edge
/// straddles p's height and crosses the horizontal through p strictly to the right of p. An odd
/// count of such edges puts p inside the polygon.
template <class P>
bool crossesRightOf(const P& pi, const P& pj, const P& p) {
    const bool a = p.y < pi.y;
    const bool b = p.y < pj.y;
    if (a == b)
        return false;
    const double xc = pi.x + (p.y - pi.y) * (pj.x - pi.x) / (pj.y - pi.y);
    return p.x < xc;
}

}  // namespace core
}  // namespace geolib

#endif  // VOGEBASIC_CORE_PLAN_H
