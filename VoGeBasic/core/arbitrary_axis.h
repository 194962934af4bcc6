// The arbitrary-axis rule: the X and Y axes that go with a given Z axis. Internal, not
// exported; VoGeMatrix3D::setZTrans builds its frames on it, and through them kestZxTrans and
// the circle's points.
#ifndef VOGEBASIC_CORE_ARBITRARY_AXIS_H
#define VOGEBASIC_CORE_ARBITRARY_AXIS_H

namespace geolib {
namespace core {

/// A unit Z whose x and y are both below this (strict) takes world Y as the reference for its X
/// axis; any other Z takes world Z.
constexpr double kArbitraryAxisLimit = 1.0 / 64.0;

/// x = reference x zUnit and y = zUnit x x, both unnormalised (three doubles each), the
/// reference chosen by the rule above.
void arbitraryAxes(const double zUnit[3], double x[3], double y[3]);

}  // namespace core
}  // namespace geolib

#endif  // VOGEBASIC_CORE_ARBITRARY_AXIS_H
