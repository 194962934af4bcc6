#include "plant_scene.h"

#include <cmath>

namespace vgscene {

namespace {

constexpr double kDegToRad = 3.14159265358979323846 / 180.0;

// A small deterministic generator (the standard distributions differ between libraries).
class Rng {
public:
    explicit Rng(std::uint32_t seed) : s_(seed * 2654435761u + 0x9E3779B9u) {}
    double uniform(double lo, double hi) { return lo + (hi - lo) * (next() / 4294967296.0); }
    int pick(int count) { return static_cast<int>(next() % static_cast<std::uint32_t>(count)); }

private:
    std::uint32_t next() {
        s_ ^= s_ << 13;
        s_ ^= s_ >> 17;
        s_ ^= s_ << 5;
        return s_;
    }
    std::uint32_t s_;
};

struct W {  // a world point or direction
    double x, y, z;
};

W add(W a, W b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
W scale(double s, W a) {
    return {s * a.x, s * a.y, s * a.z};
}
W unit(W a) {
    const double l = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return {a.x / l, a.y / l, a.z / l};
}

// Collects primitives in world coordinates and stores them in drawing coordinates.
class Builder {
public:
    explicit Builder(const View& view) : view_(view) {}

    std::vector<Primitive> prims;

    /// A box with its base corner at p, a along u, b along v (both horizontal, u turned yaw
    /// degrees from east), height c up.
    void block(W p, double a, double b, double c, double yawDeg) {
        const double t = yawDeg * kDegToRad;
        const W u{std::cos(t), std::sin(t), 0};
        const W v{-std::sin(t), std::cos(t), 0};
        box(p, a, b, c, u, v);
    }

    /// A box from its corner p along the unit directions u (length a) and v (b), height c
    /// along u x v.
    void box(W p, double a, double b, double c, W u, W v) {
        Primitive& prim = newPrimitive(Primitive::Kind::Box);
        prim.a = mm(a);
        prim.b = mm(b);
        prim.c = mm(c);
        prim.p = toDrawing(p);
        prim.u = dir(u);
        prim.v = dir(v);
        prim.n = 1;
    }

    /// A straight steel member of depth w from a to b: an H section for a column (its web
    /// along Y), an I section for a beam or brace (its web upright).
    void member(W a, W b, double w) {
        const W d = unit({b.x - a.x, b.y - a.y, b.z - a.z});
        const bool column = std::fabs(d.z) > 0.99;
        const double flange = column ? w : 0.6 * w;
        Primitive& prim = newPrimitive(Primitive::Kind::Member);
        prim.pa = toDrawing(a);
        prim.pb = toDrawing(b);
        prim.u = dir(column ? W{0, 1, 0} : W{0, 0, 1});
        prim.outline = iSection(mm(flange), mm(w), mm(0.08 * w), mm(0.05 * w));
    }

    /// A box member of square section w from a to b (legs and posts).
    void post(W a, W b, double w) {
        const W d{b.x - a.x, b.y - a.y, b.z - a.z};
        const double len = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
        const W u = unit(d);
        // A side direction square to the member: horizontal unless the member is vertical.
        W side{-u.y, u.x, 0};
        if (std::fabs(u.z) > 0.99)
            side = {1, 0, 0};
        side = unit(side);
        const W up{u.y * side.z - u.z * side.y, u.z * side.x - u.x * side.z,
                   u.x * side.y - u.y * side.x};
        const W corner = add(a, add(scale(-0.5 * w, side), scale(-0.5 * w, up)));
        box(corner, len, w, w, u, side);
    }

    /// A straight pipe (a cylinder) of radius r on the axis a -> b.
    void pipe(W a, W b, double r) { cone(a, b, r, r); }

    /// A cone (a concentric reducer) on the axis a -> b, radius ra at a and rb at b.
    void cone(W a, W b, double ra, double rb) {
        Primitive& prim = newPrimitive(Primitive::Kind::Cone);
        prim.pa = toDrawing(a);
        prim.pb = toDrawing(b);
        prim.a = mm(ra);
        prim.b = mm(rb);
    }

    /// A pipe elbow of tube radius r: its centre line leaves s and turns through angle
    /// (radians) about the bend centre c, counter-clockwise about axis.
    void elbow(W s, W c, W axis, double r, double angle) {
        Primitive& prim = newPrimitive(Primitive::Kind::Elbow);
        prim.pa = toDrawing(s);
        prim.center = toDrawing(c);
        prim.normal = dir(axis);
        prim.a = mm(r);
        prim.b = angle;
    }

    /// A sphere of radius r about c.
    void sphere(W c, double r) {
        Primitive& prim = newPrimitive(Primitive::Kind::Sphere);
        prim.center = toDrawing(c);
        prim.a = mm(r);
    }

    /// A dished vessel head on the base circle of radius r about c, bulging along axis: a
    /// straight flange of length f, then a dish of height h.
    void head(W c, W axis, double r, double h, double f) {
        Primitive& prim = newPrimitive(Primitive::Kind::Head);
        prim.center = toDrawing(c);
        prim.normal = dir(axis);
        prim.a = mm(r);
        prim.b = mm(h);
        prim.c = mm(f);
    }

    /// A ring platform of thickness t round the vertical axis through c, between radii ri
    /// and ro, from angle a0 to a1 (radians).
    void ringPlate(W c, double ri, double ro, double t, double a0, double a1) {
        Primitive& prim = newPrimitive(Primitive::Kind::RingPlate);
        prim.center = toDrawing(c);
        prim.normal = dir({0, 0, 1});
        prim.a = mm(ri);
        prim.b = mm(ro);
        prim.c = mm(t);
        prim.a0 = a0;
        prim.a1 = a1;
    }

    /// A slab or floor plate: the horizontal outline (world points) extruded by t up (t < 0:
    /// down).
    void plate(const std::vector<W>& outline, double t) {
        Primitive& prim = newPrimitive(Primitive::Kind::Plate);
        for (const W& p : outline)
            prim.outline.push_back(toDrawing(p));
        prim.u = dir({0, 0, mm(t)});
    }

    /// A square-to-round duct transition: the rectangle a x b about o in the plane of the
    /// unit directions u (a) and v (b), the circle of radius r about c.
    void transition(W o, double a, double b, W u, W v, W c, double r) {
        Primitive& prim = newPrimitive(Primitive::Kind::Transition);
        prim.p = toDrawing(o);
        prim.a = mm(a);
        prim.b = mm(b);
        prim.u = dir(u);
        prim.v = dir(v);
        prim.center = toDrawing(c);
        prim.c = mm(r);
    }

    /// A curved I beam of depth w: its centre line leaves s and turns through angle about the
    /// vertical axis through c, its web upright.
    void curvedBeam(W s, W c, double w, double angle) {
        Primitive& prim = newPrimitive(Primitive::Kind::Bend);
        prim.pa = toDrawing(s);
        prim.center = toDrawing(c);
        prim.normal = dir({0, 0, 1});
        prim.u = dir({0, 0, 1});
        prim.b = angle;
        prim.outline = iSection(mm(0.6 * w), mm(w), mm(0.08 * w), mm(0.05 * w));
    }

    /// A flat disc of radius r at c with normal nrm.
    void disc(W c, double r, W nrm) {
        Primitive& prim = newPrimitive(Primitive::Kind::Disc);
        prim.center = toDrawing(c);
        prim.normal = dir(nrm);
        prim.a = mm(r);
    }

    /// A triangle pa, pb, pc extruded by h (saddles, supports, ramps).
    void wedge(W pa, W pb, W pc, double h) {
        Primitive& prim = newPrimitive(Primitive::Kind::Wedge);
        prim.pa = toDrawing(pa);
        prim.pb = toDrawing(pb);
        prim.pc = toDrawing(pc);
        prim.c = mm(h);
    }

private:
    Primitive& newPrimitive(Primitive::Kind kind) {
        prims.emplace_back();
        prims.back().kind = kind;
        return prims.back();
    }
    // The world is laid out in metres; the drawing is in millimetres, as plant models are.
    Pt toDrawing(W p) const { return view_.point(mm(p.x), mm(p.y), mm(p.z)); }
    static double mm(double metres) { return 1000.0 * metres; }
    // An I (or H) section of flange width f, depth h, flange thickness tf and web tw about its
    // centre, in its own frame (y along the web).
    static std::vector<Pt> iSection(double f, double h, double tf, double tw) {
        const double x = 0.5 * f, y = 0.5 * h, w = 0.5 * tw;
        return {{-x, -y, 0},     {x, -y, 0},      {x, -y + tf, 0},  {w, -y + tf, 0},
                {w, y - tf, 0},  {x, y - tf, 0},  {x, y, 0},        {-x, y, 0},
                {-x, y - tf, 0}, {-w, y - tf, 0}, {-w, -y + tf, 0}, {-x, -y + tf, 0}};
    }
    Pt dir(W d) const {
        const Pt o = view_.point(0, 0, 0);
        const Pt q = view_.point(d.x, d.y, d.z);
        return Pt{q.x - o.x, q.y - o.y, q.z - o.z};
    }
    View view_;
};

// ---- plant items, each placed at an origin o in world coordinates -----------------------------

constexpr double kBay = 6.0;        // rack bay length along X
constexpr double kRackWidth = 6.0;  // rack width along Y
constexpr double kLevel1 = 5.0;     // first beam level
constexpr double kLevel2 = 8.0;     // second beam level
constexpr double kSteel = 0.35;     // section of columns and beams

// The beams and braces stop at the columns' faces, as rack steel is cut to fit: kCut is half a
// column's depth, from its centre line to its face.
constexpr double kCut = 0.5 * kSteel;

void rackBay(Builder& b, W o, bool brace) {
    for (double y : {0.0, kRackWidth}) {
        b.member(add(o, {0, y, 0}), add(o, {0, y, kLevel2 + kSteel}), kSteel);
    }
    for (double z : {kLevel1, kLevel2}) {
        b.member(add(o, {0, kCut, z}), add(o, {0, kRackWidth - kCut, z}), kSteel);  // cross beam
        for (double y : {0.0, kRackWidth}) {
            b.member(add(o, {kCut, y, z}), add(o, {kBay - kCut, y, z}), kSteel * 0.8);  // runner
        }
    }
    if (brace) {
        // From 0.5 above the foot of one column to 0.3 below the first level at the next, the
        // line between the columns' centres cut back to their faces.
        const double zFrom = 0.5;
        const double zTo = kLevel1 - 0.3;
        const double rise = (zTo - zFrom) * kCut / kBay;
        b.member(add(o, {kCut, 0, zFrom + rise}), add(o, {kBay - kCut, 0, zTo - rise}),
                 kSteel * 0.6);
    }
}

void rackEnd(Builder& b, W o) {
    for (double y : {0.0, kRackWidth}) {
        b.member(add(o, {0, y, 0}), add(o, {0, y, kLevel2 + kSteel}), kSteel);
    }
    for (double z : {kLevel1, kLevel2})
        b.member(add(o, {0, kCut, z}), add(o, {0, kRackWidth - kCut, z}), kSteel);
}

constexpr double kQuarterTurn = 1.5707963267948966;

// A pipe lying on a beam level along the rack; it sinks slightly into the beams it rests on.
// A pipe that drops turns down through an elbow beyond the rack's end, runs down and turns
// back east through a second elbow at the foot, and ends in a reducer.
void rackPipe(Builder& b, W o, double length, double y, double z, double r, bool drop = false) {
    const double axisZ = z + 0.5 * kSteel + r - 0.02;
    const W end = add(o, {length + 0.5, y, axisZ});
    b.pipe(add(o, {-0.5, y, axisZ}), end, r);
    if (!drop)
        return;
    const double bend = 3.0 * r;  // elbows of 1.5 diameters
    b.elbow(end, add(end, {0, 0, -bend}), {0, 1, 0}, r, kQuarterTurn);
    const W top = add(end, {bend, 0, -bend});
    const W foot = {top.x, top.y, 0.6 + bend};
    b.pipe(top, foot, r);
    b.elbow(foot, add(foot, {bend, 0, 0}), {0, -1, 0}, r, kQuarterTurn);
    const W out = add(foot, {bend, 0, -bend});
    b.pipe(out, add(out, {1.2, 0, 0}), r);
    b.cone(add(out, {1.2, 0, 0}), add(out, {1.7, 0, 0}), r, 0.6 * r);
}

void pump(Builder& b, W o, double yaw) {
    const double t = yaw * kDegToRad;
    const W along{std::cos(t), std::sin(t), 0};
    const W across{-std::sin(t), std::cos(t), 0};
    auto at = [&](double x, double y, double z) {
        return add(o, add(scale(x, along), add(scale(y, across), W{0, 0, z})));
    };
    b.block(o, 2.4, 1.0, 0.4, yaw);                              // skid
    b.block(at(0.2, 0.2, 0.4), 1.0, 0.6, 0.7, yaw);              // motor
    b.pipe(at(1.4, 0.5, 0.75), at(2.3, 0.5, 0.75), 0.35);        // casing
    b.pipe(at(1.85, 0.5, 1.05), at(1.85, 0.5, 1.6), 0.12);       // discharge
    b.cone(at(2.3, 0.5, 0.75), at(2.6, 0.5, 0.75), 0.18, 0.12);  // suction reducer
}

// A vertical vessel on a skirt, with dished heads and a ring platform near the top.
void verticalVessel(Builder& b, W o, double r, double h) {
    const double z0 = 1.2;
    const double dish = 0.5 * r;
    b.pipe(o, add(o, {0, 0, z0}), r);  // skirt
    b.head(add(o, {0, 0, z0}), {0, 0, -1}, r, dish, 0.05);
    b.pipe(add(o, {0, 0, z0}), add(o, {0, 0, h}), r);
    b.head(add(o, {0, 0, h}), {0, 0, 1}, r, dish, 0.05);
    b.ringPlate(add(o, {0, 0, 0.7 * h}), r + 0.1, r + 1.1, 0.15, 0.0, 4.71238898038469);
    b.block(add(o, {-r - 0.3, -r - 0.3, 0}), 2 * r + 0.6, 2 * r + 0.6, 0.3, 0);  // plinth
}

void horizontalDrum(Builder& b, W o, double r, double len) {
    const double axisZ = 0.6 + r;
    for (double x : {0.2 * len, 0.8 * len}) {
        b.wedge(add(o, {x - 0.8, -0.3, 0}), add(o, {x + 0.8, -0.3, 0}), add(o, {x, -0.3, axisZ}),
                0.6);
    }
    b.pipe(add(o, {0, 0, axisZ}), add(o, {len, 0, axisZ}), r);
    b.head(add(o, {0, 0, axisZ}), {-1, 0, 0}, r, 0.5 * r, 0.05);
    b.head(add(o, {len, 0, axisZ}), {1, 0, 0}, r, 0.5 * r, 0.05);
}

// A storage sphere on four legs, its inlet pipe entering from the top. The legs stand at 0.75 r
// from the axis and end at the equator: the sphere is drawn as a polyhedron whose faces keep
// 0.93 r from its centre, and a leg farther out would show its top beside it.
void storageSphere(Builder& b, W o, double r) {
    const W c = add(o, {0, 0, r + 1.5});
    b.sphere(c, r);
    for (int k = 0; k < 4; ++k) {
        const double t = (45.0 + 90.0 * k) * kDegToRad;
        const W foot = add(o, {0.75 * r * std::cos(t), 0.75 * r * std::sin(t), 0});
        b.post(foot, add(foot, {0, 0, r + 1.5}), 0.25);
    }
    b.pipe(add(c, {0, 0, 0.6 * r}), add(c, {0, 0, r + 1.0}), 0.15 * r);
}

void building(Builder& b, W o, double a, double d, double h, double yaw) {
    b.block(o, a, d, h, yaw);
    b.block(add(o, {0.5, 0.5, h}), 1.2, 1.2, 0.8, yaw);  // roof unit, sitting on the roof
}

// A storage tank with a conical roof.
void tank(Builder& b, W o, double r, double h) {
    b.pipe(o, add(o, {0, 0, h}), r);
    b.cone(add(o, {0, 0, h}), add(o, {0, 0, h + 0.25 * r}), r, 0.0);
}

// A base slab with chamfered corners under equipment, its top at ground level.
void baseSlab(Builder& b, W o, double a, double d) {
    const double k = 0.3;
    b.plate({add(o, {k, 0, 0}), add(o, {a - k, 0, 0}), add(o, {a, k, 0}), add(o, {a, d - k, 0}),
             add(o, {a - k, d, 0}), add(o, {k, d, 0}), add(o, {0, d - k, 0}), add(o, {0, k, 0})},
            -0.3);
}

// An L-shaped floor plate at height z round the corner of a rack.
void floorPlate(Builder& b, W o, double z) {
    b.plate({add(o, {0, 0, z}), add(o, {4, 0, z}), add(o, {4, 1.5, z}), add(o, {1.5, 1.5, z}),
             add(o, {1.5, 5, z}), add(o, {0, 5, z})},
            0.05);
}

// A rectangular duct leaving a building's wall at o (heading north) through a square-to-round
// transition into a round duct.
void duct(Builder& b, W o) {
    b.block(add(o, {-0.6, 0, 0}), 1.2, 1.5, 0.8, 0);
    const W start = add(o, {0, 1.5, 0.4});
    const W end = add(start, {0.2, 1.0, 0.1});
    b.transition(start, 1.2, 0.8, {1, 0, 0}, {0, 0, 1}, end, 0.35);
    b.pipe(end, add(end, {0, 3.0, 0}), 0.35);
}

// One unit of a plant: a rack of `bays` bays with pipes, equipment on both sides.
void plantUnit(Builder& b, W o, int bays, Rng& rng) {
    for (int i = 0; i < bays; ++i)
        rackBay(b, add(o, {i * kBay, 0, 0}), i % 2 == 0);
    rackEnd(b, add(o, {bays * kBay, 0, 0}));
    const double len = bays * kBay;
    for (int k = 0; k < 3; ++k) {
        rackPipe(b, o, len, 0.8 + k * 1.6 + rng.uniform(0, 0.4), kLevel1, rng.uniform(0.15, 0.35),
                 k == 1);
    }
    rackPipe(b, o, len, 1.5 + rng.uniform(0, 2.5), kLevel2, rng.uniform(0.2, 0.4));
    floorPlate(b, add(o, {0.3, 0.3, 0}), kLevel1 - 0.5 * kSteel - 0.05);
    for (int i = 0; i < bays; i += 2) {
        const W south = add(o, {i * kBay + rng.uniform(0, 2), -5.0 - rng.uniform(0, 3), 0});
        const W north =
            add(o, {i * kBay + rng.uniform(0, 2), kRackWidth + 3.0 + rng.uniform(0, 3), 0});
        switch (rng.pick(4)) {
            case 0:
                pump(b, south, rng.uniform(-30, 30));
                break;
            case 1:
                verticalVessel(b, south, rng.uniform(0.8, 1.5), rng.uniform(4, 9));
                break;
            case 2:
                horizontalDrum(b, south, rng.uniform(0.7, 1.2), rng.uniform(4, 7));
                break;
            default:
                building(b, south, rng.uniform(4, 7), rng.uniform(3, 4), rng.uniform(3, 5),
                         rng.uniform(-10, 10));
                break;
        }
        baseSlab(b, add(south, {-0.5, -0.5, 0}), 3.0, 2.0);
        switch (rng.pick(4)) {
            case 0:
                tank(b, north, rng.uniform(1.5, 3.0), rng.uniform(4, 8));
                break;
            case 1:
                pump(b, north, rng.uniform(150, 210));
                break;
            case 2:
                storageSphere(b, north, rng.uniform(1.5, 2.5));
                break;
            default:
                verticalVessel(b, north, rng.uniform(0.6, 1.2), rng.uniform(3, 7));
                break;
        }
    }
}

}  // namespace

View View::oblique(double azimuthDeg, double elevationDeg) {
    const double az = azimuthDeg * kDegToRad;
    const double el = elevationDeg * kDegToRad;
    // Depth runs from the viewer into the scene; right = depth x up; down = depth x right.
    const W depth{-std::sin(az) * std::cos(el), std::cos(az) * std::cos(el), -std::sin(el)};
    const W right = unit({depth.y * 1.0 - depth.z * 0.0, depth.z * 0.0 - depth.x * 1.0, 0.0});
    const W down{depth.y * right.z - depth.z * right.y, depth.z * right.x - depth.x * right.z,
                 depth.x * right.y - depth.y * right.x};
    View v{};
    const W rows[3] = {right, down, depth};
    for (int i = 0; i < 3; ++i) {
        v.r[i][0] = rows[i].x;
        v.r[i][1] = rows[i].y;
        v.r[i][2] = rows[i].z;
    }
    return v;
}

Pt View::point(double x, double y, double z) const {
    return Pt{r[0][0] * x + r[0][1] * y + r[0][2] * z, r[1][0] * x + r[1][1] * y + r[1][2] * z,
              r[2][0] * x + r[2][1] * y + r[2][2] * z};
}

std::vector<Primitive> builtinPlant() {
    Builder b(View::oblique(30.0, 25.0));
    // A rack of three bays with its pipes.
    for (int i = 0; i < 3; ++i)
        rackBay(b, {i * kBay, 0, 0}, i == 1);
    rackEnd(b, {3 * kBay, 0, 0});
    rackPipe(b, {0, 0, 0}, 3 * kBay, 1.2, kLevel1, 0.3, true);
    rackPipe(b, {0, 0, 0}, 3 * kBay, 3.0, kLevel1, 0.25);
    rackPipe(b, {0, 0, 0}, 3 * kBay, 2.2, kLevel2, 0.35);
    // Two boxes, one behind the other.
    b.block({2, -9, 0}, 3, 2, 2.5, 0);
    b.block({3, -6, 0}, 3, 2, 4, 0);
    // A box seen from its corner.
    b.block({11, -8, 0}, 3, 3, 3, 45);
    // A vertical vessel and a horizontal drum on saddles.
    verticalVessel(b, {20, -4, 0}, 1.2, 7);
    horizontalDrum(b, {8, 9, 0}, 1.0, 6);
    pump(b, {1, 10, 0}, 0);
    storageSphere(b, {26, 8, 0}, 2.0);
    tank(b, {16, 14, 0}, 2.0, 4.0);
    // Steel and civil work of the swept kinds: a floor plate in the rack, a slab under the pump,
    // a duct leaving the box seen from its corner, a curved beam round the vessel.
    floorPlate(b, {0.3, 0.3, 0}, kLevel1 - 0.5 * kSteel - 0.05);
    baseSlab(b, {0.5, 9.5, 0}, 3.4, 2.0);
    duct(b, {6.0, -4.0, 0});
    b.curvedBeam({22.6, -4, 4.5}, {20, -4, 4.5}, 0.3, 2.0);
    return b.prims;
}

std::vector<Primitive> generatePlant(int n, std::uint32_t seed) {
    Builder b(View::oblique(35.0, 30.0));
    Rng rng(seed);
    const int bays = 8;
    // Units on a square grid large enough for n primitives (about 110 per unit).
    const int units = n <= 0 ? 1 : (n + 109) / 110;
    const int side = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(units))));
    for (int k = 0; k < units || (n > 0 && static_cast<int>(b.prims.size()) < n); ++k) {
        const W o{(k % side) * (bays * kBay + 12.0), (k / side) * 30.0, 0};
        plantUnit(b, o, bays, rng);
    }
    if (n > 0 && static_cast<int>(b.prims.size()) > n)
        b.prims.resize(static_cast<size_t>(n));
    return b.prims;
}

namespace {

// A primitive made from its outline, handed to the library as a point list.
geolib::_s_hd_prof_* tessellateOutline(const Primitive& prim) {
    geolib::point* head = nullptr;
    geolib::point** link = &head;
    for (const Pt& p : prim.outline) {
        *link = geolib::mallocPoint();
        if (*link == nullptr) {
            geolib::freePoint(head);
            return nullptr;
        }
        (*link)->pt = VoGePoint3D(p.x, p.y, p.z);
        link = &(*link)->next;
    }
    geolib::_s_hd_prof_* obj = nullptr;
    if (prim.kind == Primitive::Kind::Member)
        obj = geolib::ep_divide_str(head, prim.pa, prim.pb, prim.u);
    else if (prim.kind == Primitive::Kind::Plate)
        obj = geolib::ep_divide_pline(head, prim.u);
    else
        obj = geolib::ep_divide_arc(head, prim.center, prim.pa, prim.normal, prim.b, prim.u);
    geolib::freePoint(head);
    return obj;
}

}  // namespace

geolib::_s_hd_prof_* tessellate(const Primitive& prim) {
    switch (prim.kind) {
        case Primitive::Kind::Box:
            return geolib::ep_divide_box(prim.a, prim.b, prim.c, prim.p, prim.u, prim.v, prim.n);
        case Primitive::Kind::Wedge:
            return geolib::ep_divide_wed(prim.pa, prim.pb, prim.pc, prim.c);
        case Primitive::Kind::Prism:
            return geolib::ep_divide_pri(prim.pa, prim.pb, prim.pc, prim.n);
        case Primitive::Kind::Disc:
            return geolib::ep_divide_cir(prim.center, prim.a, prim.normal);
        case Primitive::Kind::Cone:
            return geolib::ep_divide_con(prim.pa, prim.pb, prim.a, prim.b);
        case Primitive::Kind::Sphere:
            return geolib::ep_divide_sph(prim.center, prim.a);
        case Primitive::Kind::Elbow:
            return geolib::ep_divide_tor(prim.a, prim.b, prim.center, prim.pa, prim.normal, prim.n);
        case Primitive::Kind::Head:
            return geolib::ep_divide_ova(prim.a, prim.b, prim.c, prim.center, prim.normal);
        case Primitive::Kind::RingPlate:
            return geolib::ep_divide_sad(prim.a, prim.b, prim.c, prim.center, prim.a0, prim.a1,
                                         prim.normal);
        case Primitive::Kind::Transition:
            return geolib::ep_divide_squcir(prim.p, prim.a, prim.b, prim.u, prim.v, prim.center,
                                            prim.c);
        case Primitive::Kind::Member:
        case Primitive::Kind::Plate:
        case Primitive::Kind::Bend:
            return tessellateOutline(prim);
    }
    return nullptr;
}

std::vector<geolib::_s_hd_prof_*> tessellateAll(const std::vector<Primitive>& prims) {
    std::vector<geolib::_s_hd_prof_*> objs;
    objs.reserve(prims.size());
    for (const Primitive& p : prims) {
        geolib::_s_hd_prof_* o = tessellate(p);
        if (o != nullptr)
            objs.push_back(o);
    }
    return objs;
}

void releaseAll(std::vector<geolib::_s_hd_prof_*>& objs) {
    for (geolib::_s_hd_prof_*& o : objs)
        geolib::freeHDProfObjectPointer(o);
    objs.clear();
}

}  // namespace vgscene
