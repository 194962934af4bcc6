// Views and tessellation in drawing coordinates: every point and direction of a primitive is
// rotated with the view's VoGeMatrix3D before the library's tessellator sees it.
#include "view.h"

#include <cmath>

namespace vogedraw {
namespace {

using geolib::_s_hd_point_;
using geolib::_s_hd_prof_;

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;

struct V3 {
    double x, y, z;
};

V3 cross(V3 a, V3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double dot(V3 a, V3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
V3 unit(V3 a) {
    const double l = std::sqrt(dot(a, a));
    return l > 0 ? V3{a.x / l, a.y / l, a.z / l} : a;
}

// The primitive's numbers seen through the view matrix.
class Placed {
public:
    Placed(const Primitive& prim, const VoGeMatrix3D& m) : v_(prim.v), m_(m) {}

    double num(std::size_t i) const { return v_[i]; }
    /// The point of fields i..i+2 in drawing coordinates.
    _s_hd_point_ point(std::size_t i) const { return rotate({v_[i], v_[i + 1], v_[i + 2]}); }
    /// The direction of fields i..i+2 (made unit length) in drawing coordinates.
    _s_hd_point_ direction(std::size_t i) const {
        return rotate(unit({v_[i], v_[i + 1], v_[i + 2]}));
    }
    _s_hd_point_ rotate(V3 a) const {
        const VoGePoint3D p = m_.postMult1(VoGePoint3D(a.x, a.y, a.z));
        return {p.x, p.y, p.z};
    }

private:
    const std::vector<double>& v_;
    const VoGeMatrix3D& m_;
};

V3 asV3(_s_hd_point_ p) {
    return {p.x, p.y, p.z};
}

// The reference direction of a ring plate's angles about unit k: the projection of +X on the
// plane square to k, or of +Y for an axis along X (as the library's ring plate takes it).
V3 ringReference(V3 k) {
    const V3 ref = std::fabs(k.x) < 0.5 ? V3{1, 0, 0} : V3{0, 1, 0};
    const double d = dot(ref, k);
    return unit({ref.x - d * k.x, ref.y - d * k.y, ref.z - d * k.z});
}

// The angle to add to a model angle about k to get the library's angle in drawing coordinates.
double ringAngleShift(const Placed& p, std::size_t axisField) {
    const V3 km = unit({p.num(axisField), p.num(axisField + 1), p.num(axisField + 2)});
    const V3 xm = asV3(p.rotate(ringReference(km)));
    const V3 kd = asV3(p.direction(axisField));
    const V3 xd = ringReference(kd);
    const V3 yd = cross(kd, xd);
    return std::atan2(dot(xm, yd), dot(xm, xd));
}

// The points of fields from..end as a list for the library: x y z turned into the view, or x y
// of a section in its own plane (z 0), as they stand. Null if an allocation fails.
geolib::point* pointList(const Placed& p, std::size_t from, std::size_t end, bool section) {
    geolib::point* head = nullptr;
    geolib::point* tail = nullptr;
    const std::size_t size = section ? 2 : 3;
    for (std::size_t i = from; i + size <= end; i += size) {
        geolib::point* node = geolib::mallocPoint();
        if (node == nullptr) {
            geolib::freePoint(head);
            return nullptr;
        }
        const _s_hd_point_ q = section ? _s_hd_point_{p.num(i), p.num(i + 1), 0.0} : p.point(i);
        node->pt = VoGePoint3D(q.x, q.y, q.z);
        (tail == nullptr ? head : tail->next) = node;
        tail = node;
    }
    return head;
}

// A primitive made from the points of fields from..end by make; null if they cannot be listed.
template <class Make>
_s_hd_prof_* fromPoints(const Placed& p, std::size_t from, std::size_t end, bool section,
                        Make make) {
    geolib::point* head = pointList(p, from, end, section);
    if (head == nullptr)
        return nullptr;
    _s_hd_prof_* obj = make(head);
    geolib::freePoint(head);
    return obj;
}

}  // namespace

bool namedView(const std::string& name, ViewAngles& out) {
    static const struct {
        const char* name;
        ViewAngles view;
    } views[] = {
        {"plan", {180.0, 90.0}},
        {"north", {0.0, 0.0}},
        {"south", {180.0, 0.0}},
        {"east", {90.0, 0.0}},
        {"west", {270.0, 0.0}},
        {"iso", {225.0, 35.26438968275465}},  // atan(1/sqrt 2): the three axes equally short
    };
    for (const auto& v : views) {
        if (name == v.name) {
            out = v.view;
            return true;
        }
    }
    return false;
}

VoGeMatrix3D viewMatrix(const ViewAngles& view) {
    const double az = view.azimuth * kDeg;
    const double el = view.elevation * kDeg;
    // toViewer points from the model to the viewer; up is the sheet's up, the model's vertical
    // tilted with the view (north when looking straight down from the south side).
    const V3 toViewer{std::sin(az) * std::cos(el), std::cos(az) * std::cos(el), std::sin(el)};
    const V3 up{-std::sin(az) * std::sin(el), -std::cos(az) * std::sin(el), std::cos(el)};
    const V3 right = cross(up, toViewer);
    VoGeMatrix3D m;
    m.makeIdentity();
    m.setRow(0, right.x, right.y, right.z, 0.0);
    m.setRow(1, -up.x, -up.y, -up.z, 0.0);
    m.setRow(2, -toViewer.x, -toViewer.y, -toViewer.z, 0.0);
    return m;
}

_s_hd_prof_* tessellate(const Primitive& prim, const VoGeMatrix3D& m, std::string& why) {
    const Placed p(prim, m);
    why = "refused by the tessellator (degenerate or out of range)";
    switch (prim.kind) {
        case Kind::Box: {
            // Corner at the smallest coordinates, whatever the signs of the sizes.
            double c[3], s[3];
            for (std::size_t i = 0; i < 3; ++i) {
                s[i] = std::fabs(p.num(3 + i));
                c[i] = std::fmin(p.num(i), p.num(i) + p.num(3 + i));
            }
            return geolib::ep_divide_box(s[0], s[1], s[2], p.rotate({c[0], c[1], c[2]}),
                                         p.rotate({1, 0, 0}), p.rotate({0, 1, 0}), 1);
        }
        case Kind::OrientedBox: {
            // u as given, v made square to it: the box is right-angled whatever v was.
            const V3 u = unit({p.num(6), p.num(7), p.num(8)});
            const V3 v0{p.num(9), p.num(10), p.num(11)};
            const double along = dot(v0, u);
            const V3 v = unit({v0.x - along * u.x, v0.y - along * u.y, v0.z - along * u.z});
            if (dot(u, u) < 0.5 || dot(v, v) < 0.5 ||
                std::sqrt(dot(cross(u, v0), cross(u, v0))) <= 1e-9 * std::sqrt(dot(v0, v0))) {
                why = "u and v are null or parallel";
                return nullptr;
            }
            return geolib::ep_divide_box(p.num(3), p.num(4), p.num(5), p.point(0), p.rotate(u),
                                         p.rotate(v), 1);
        }
        case Kind::Wedge:
            return geolib::ep_divide_wed(p.point(0), p.point(3), p.point(6), p.num(9));
        case Kind::Prism:
            return geolib::ep_divide_pri(p.point(0), p.point(3), p.point(6),
                                         static_cast<int>(p.num(9)));
        case Kind::Line:
            return geolib::ep_divide_pln(p.point(0), p.point(3));
        case Kind::Polyline:
            return fromPoints(p, 0, prim.v.size(), false,
                              [](geolib::point* pts) { return geolib::ep_divide_plns(pts); });
        case Kind::Disc:
            return geolib::ep_divide_cir(p.point(0), p.num(3), p.direction(4));
        case Kind::Cone:
            return geolib::ep_divide_con(p.point(0), p.point(3), p.num(6), p.num(7));
        case Kind::Cylinder:
            return geolib::ep_divide_con(p.point(0), p.point(3), p.num(6), p.num(6));
        case Kind::EccentricCone:
            return geolib::ep_divide_ecn(p.point(0), p.point(3), p.num(6), p.num(7),
                                         p.direction(8));
        case Kind::Snout:
            return geolib::ep_divide_scn(p.num(0), p.num(1), p.num(2), p.num(3), p.num(4),
                                         p.point(5), p.direction(8), p.direction(11),
                                         p.direction(14), p.num(17));
        case Kind::SlopedCylinder:
            return geolib::ep_divide_scy(p.point(0), p.point(3), p.num(6), p.direction(7));
        case Kind::Sphere:
            return geolib::ep_divide_sph(p.point(0), p.num(3));
        case Kind::Elbow:
            return geolib::ep_divide_tor(p.num(0), p.num(1) * kDeg, p.point(2), p.point(5),
                                         p.direction(8),
                                         prim.v.size() > 11 ? static_cast<int>(p.num(11)) : 0);
        case Kind::Head:
            return geolib::ep_divide_ova(p.num(0), p.num(1), p.num(2), p.point(3), p.direction(6));
        case Kind::RingPlate: {
            const double shift = ringAngleShift(p, 8);
            return geolib::ep_divide_sad(p.num(0), p.num(1), p.num(2), p.point(3),
                                         p.num(6) * kDeg + shift, p.num(7) * kDeg + shift,
                                         p.direction(8));
        }
        case Kind::Member:
            return fromPoints(p, 9, prim.v.size(), true, [&](geolib::point* section) {
                return geolib::ep_divide_str(section, p.point(0), p.point(3), p.direction(6));
            });
        case Kind::Plate:
            return fromPoints(p, 1, prim.v.size(), false, [&](geolib::point* outline) {
                return geolib::ep_divide_pline(outline, p.num(0));
            });
        case Kind::Transition:
            return geolib::ep_divide_squcir(p.point(0), p.num(3), p.num(4), p.direction(5),
                                            p.direction(8), p.point(11), p.num(14));
        case Kind::Bend:
            return fromPoints(p, 13, prim.v.size(), true, [&](geolib::point* section) {
                return geolib::ep_divide_arc(section, p.point(0), p.point(3), p.direction(6),
                                             p.num(9) * kDeg, p.direction(10));
            });
    }
    return nullptr;
}

}  // namespace vogedraw
