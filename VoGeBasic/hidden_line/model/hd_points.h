// Point and vector helpers on _s_hd_point_ values, shared by the tessellators and the hide pass.
// Internal, not exported. They allocate nothing and never fail.
#ifndef VOGEBASIC_HD_POINTS_H
#define VOGEBASIC_HD_POINTS_H

#include <cmath>

#include "hd_records.h"
#include "hidden_line/model/hd_tolerances.h"

namespace geolib {

// ---- point and vector helpers (allocate nothing, never fail) ------------------------------------

inline _s_hd_point_ vecSub(_s_hd_point_ a, _s_hd_point_ b);  ///< a - b
inline _s_hd_point_ vecAdd(_s_hd_point_ a, _s_hd_point_ b);  ///< a + b
_s_hd_point_ vecScale(double s, _s_hd_point_ a);             ///< s * a
_s_hd_point_ vecNegate(_s_hd_point_ a);                      ///< -a
/// s*a + t*b per component; with s = 1 it moves point a by t along vector b.
inline _s_hd_point_ linComb(double s, _s_hd_point_ a, double t, _s_hd_point_ b);
/// t*a + (1 - t)*b.
_s_hd_point_ lerpPoint(double t, _s_hd_point_ a, _s_hd_point_ b);
/// 2*c - a: a reflected through c.
_s_hd_point_ mirrorPoint(_s_hd_point_ a, _s_hd_point_ c);
inline double vecDot(_s_hd_point_ a, _s_hd_point_ b);
/// a*d - b*c.
inline double det2(double a, double b, double c, double d);
/// The ordinary cross product a x b, each component a det2.
inline _s_hd_point_ vecCross(_s_hd_point_ a, _s_hd_point_ b);
/// Length after snapping components below 1e-9 to 0; 0 when the squared length is <= 1e-10.
inline double vecLength(_s_hd_point_ v);
/// v / vecLength(v); the zero vector when that length is below 1e-9.
inline _s_hd_point_ vecNormalize(_s_hd_point_ v);
/// The unit direction from b towards a.
inline _s_hd_point_ unitDir(_s_hd_point_ a, _s_hd_point_ b);
/// The unit vector along a x b (zero for parallel a, b).
inline _s_hd_point_ unitCross(_s_hd_point_ a, _s_hd_point_ b);
/// The unit normal of the triangle a, b, c: unitCross(b - a, c - a).
inline _s_hd_point_ triNormal(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c);
/// vecLength(a - b), with its snapping.
inline double pointDist(_s_hd_point_ a, _s_hd_point_ b);
/// (a - b).(a - b), without snapping.
inline double pointDist2(_s_hd_point_ a, _s_hd_point_ b);
/// True when vecLength(a x b) < 1e-9.
bool vecIsParallel(_s_hd_point_ a, _s_hd_point_ b);
/// True when each coordinate differs by strictly less than 0.005.
bool isSamePoint(_s_hd_point_ a, _s_hd_point_ b);
/// True when each coordinate differs by strictly less than 5e-7.
inline bool isSamePointFine(_s_hd_point_ a, _s_hd_point_ b);
/// True when the three coordinates are finite (neither NaN nor infinite).
bool isFinitePoint(_s_hd_point_ p);
/// The 3x3 determinant of rows (a b c / d e f / g h i), summed as
/// a*e*i + b*f*g + c*h*d - c*e*g - b*d*i - a*h*f.
double det3x3(double a, double b, double c, double d, double e, double f, double g, double h,
              double i);

// ---- inline definitions of the point and vector helpers (hot in the hide pass) ------------------

namespace detail {
/// A vector component below kComponentSnap in magnitude counts as 0 in lengths.
inline double snapComponent(double v) {
    return std::fabs(v) < hd::kComponentSnap ? 0.0 : v;
}
}  // namespace detail

inline _s_hd_point_ vecSub(_s_hd_point_ a, _s_hd_point_ b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline _s_hd_point_ vecAdd(_s_hd_point_ a, _s_hd_point_ b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline _s_hd_point_ linComb(double s, _s_hd_point_ a, double t, _s_hd_point_ b) {
    return {s * a.x + t * b.x, s * a.y + t * b.y, s * a.z + t * b.z};
}

inline double vecDot(_s_hd_point_ a, _s_hd_point_ b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline double det2(double a, double b, double c, double d) {
    return a * d - b * c;
}

inline _s_hd_point_ vecCross(_s_hd_point_ a, _s_hd_point_ b) {
    return {det2(a.y, a.z, b.y, b.z), -det2(a.x, a.z, b.x, b.z), det2(a.x, a.y, b.x, b.y)};
}

inline double vecLength(_s_hd_point_ v) {
    const double x = detail::snapComponent(v.x);
    const double y = detail::snapComponent(v.y);
    const double z = detail::snapComponent(v.z);
    const double q = x * x + y * y + z * z;
    if (q <= hd::kNullLengthSq)
        return 0.0;
    return std::sqrt(q);
}

inline _s_hd_point_ vecNormalize(_s_hd_point_ v) {
    const double len = vecLength(v);
    if (len < hd::kUnitMinLength)
        return {0.0, 0.0, 0.0};
    return {v.x / len, v.y / len, v.z / len};
}

inline _s_hd_point_ unitDir(_s_hd_point_ a, _s_hd_point_ b) {
    return vecNormalize(vecSub(a, b));
}

inline _s_hd_point_ unitCross(_s_hd_point_ a, _s_hd_point_ b) {
    return vecNormalize(vecCross(a, b));
}

inline _s_hd_point_ triNormal(_s_hd_point_ a, _s_hd_point_ b, _s_hd_point_ c) {
    return unitCross(vecSub(b, a), vecSub(c, a));
}

inline double pointDist(_s_hd_point_ a, _s_hd_point_ b) {
    return vecLength(vecSub(a, b));
}

inline double pointDist2(_s_hd_point_ a, _s_hd_point_ b) {
    const _s_hd_point_ d = vecSub(a, b);
    return vecDot(d, d);
}

inline bool isSamePointFine(_s_hd_point_ a, _s_hd_point_ b) {
    return std::fabs(a.x - b.x) < hd::kSamePointFineTol &&
           std::fabs(a.y - b.y) < hd::kSamePointFineTol &&
           std::fabs(a.z - b.z) < hd::kSamePointFineTol;
}

}  // namespace geolib

#endif  // VOGEBASIC_HD_POINTS_H
