// Fuzz target: scenes of every tessellator (the elbow, the head and the swept solids included),
// registered for face intersection, through the hide pass. Checks that every box holds its object,
// that the engine gives what the plain step-by-step pass gives, node for node and bit for bit, and
// that the visible pieces lie on their lines, in order from each line's near end and disjoint.
#include <cmath>
#include <vector>

#include "hd_engine.h"
#include "hd_tessellators.h"
#include "hidden_line/engine/hd_face_intersect.h"
#include "hidden_line/engine/hd_pass.h"
#include "tests/fuzz/fuzz_support.h"
#include "tests/hidden_line/engine/hd_engine_fixtures.h"

namespace {

using namespace geolib;
using P = _s_hd_point_;

P pointFrom(FuzzedDataProvider& in) {
    return vgfuzz::triple<P>(in);
}

point* pointListFrom(FuzzedDataProvider& in) {
    point* head = nullptr;
    point** link = &head;
    const int n = in.ConsumeIntegralInRange<int>(0, 6);
    for (int k = 0; k < n; ++k) {
        point* p = mallocPoint();
        if (p == nullptr)
            break;
        p->pt = vgfuzz::triple<VoGePoint3D>(in);
        *link = p;
        link = &p->next;
    }
    return head;
}

_s_hd_prof_* primitiveFrom(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 18)) {
        case 0: {
            const double a = vgfuzz::number(in), b = vgfuzz::number(in), c = vgfuzz::number(in);
            const P p = pointFrom(in), u = pointFrom(in), v = pointFrom(in);
            return ep_divide_box(a, b, c, p, u, v, in.ConsumeIntegralInRange<int>(0, 1));
        }
        case 1: {
            const P a = pointFrom(in), b = pointFrom(in), c = pointFrom(in);
            return ep_divide_wed(a, b, c, vgfuzz::number(in));
        }
        case 2: {
            const P a = pointFrom(in), b = pointFrom(in), s = pointFrom(in);
            const int n = in.ConsumeIntegralInRange<int>(-2, 24);
            // A chosen count follows a sagitta of 0.01: a radius of 1e154 would ask for the
            // largest count there is, and the pass would take minutes, not find more.
            const double r2 =
                (s.x - a.x) * (s.x - a.x) + (s.y - a.y) * (s.y - a.y) + (s.z - a.z) * (s.z - a.z);
            if (n == 0 && !(r2 <= 1e4))
                return nullptr;
            return ep_divide_pri(a, b, s, n);
        }
        case 3: {
            const P a = pointFrom(in), b = pointFrom(in);
            return ep_divide_pln(a, b);
        }
        case 4: {
            point* list = pointListFrom(in);
            _s_hd_prof_* obj = ep_divide_plns(list);
            freePoint(list);
            return obj;
        }
        case 5: {
            const P c = pointFrom(in);
            const double r = vgfuzz::number(in);
            return ep_divide_cir(c, r, pointFrom(in));
        }
        case 6: {
            const P a = pointFrom(in), b = pointFrom(in);
            const double ra = vgfuzz::number(in);
            return ep_divide_con(a, b, ra, vgfuzz::number(in));
        }
        case 7: {
            const P a = pointFrom(in), b = pointFrom(in);
            const double ra = vgfuzz::number(in), rb = vgfuzz::number(in);
            return ep_divide_ecn(a, b, ra, rb, pointFrom(in));
        }
        case 8: {
            const double rb = vgfuzz::number(in), rt = vgfuzz::number(in);
            const double h = vgfuzz::number(in), xoff = vgfuzz::number(in);
            const double yoff = vgfuzz::number(in);
            const P o = pointFrom(in), x = pointFrom(in), y = pointFrom(in), z = pointFrom(in);
            // A sagitta far below the radius asks for the largest count there is, doubled on a
            // nearly edge-on side: the pass would take long and find no more.
            const double sag = vgfuzz::number(in);
            if (!(sag >= 1e-3 * std::fabs(rb) && sag >= 1e-3 * std::fabs(rt)))
                return nullptr;
            return ep_divide_scn(rb, rt, h, xoff, yoff, o, x, y, z, sag);
        }
        case 9: {
            const P a = pointFrom(in), b = pointFrom(in);
            const double r = vgfuzz::number(in);
            return ep_divide_scy(a, b, r, pointFrom(in));
        }
        case 10: {
            const P c = pointFrom(in);
            return ep_divide_sph(c, vgfuzz::number(in));
        }
        case 12: {
            // An elbow: its start mostly placed square to the axis, as a drawing program does.
            const double r = vgfuzz::number(in), angle = vgfuzz::number(in, 7.0);
            const P c = pointFrom(in), axis = pointFrom(in);
            P s = pointFrom(in);
            const double bend = vgfuzz::number(in);
            if (in.ConsumeBool()) {
                const double l2 = axis.x * axis.x + axis.y * axis.y + axis.z * axis.z;
                const double d = l2 > 0 ? (s.x * axis.x + s.y * axis.y + s.z * axis.z) / l2 : 0.0;
                const P off{s.x - d * axis.x, s.y - d * axis.y, s.z - d * axis.z};
                const double l = std::sqrt(off.x * off.x + off.y * off.y + off.z * off.z);
                if (l > 0)
                    s = {c.x + bend * off.x / l, c.y + bend * off.y / l, c.z + bend * off.z / l};
            }
            return ep_divide_tor(r, angle, c, s, axis, in.ConsumeIntegralInRange<int>(0, 16));
        }
        case 13: {
            const double r = vgfuzz::number(in), h = vgfuzz::number(in), f = vgfuzz::number(in);
            const P c = pointFrom(in);
            return ep_divide_ova(r, h, f, c, pointFrom(in));
        }
        case 15:
        case 16:
        case 17: {
            // A member, a plate (by a vector or a thickness) or a bend of a fuzzed outline.
            const int kind = in.ConsumeIntegralInRange<int>(0, 3);
            point* outline = pointListFrom(in);
            const P a = pointFrom(in), b = pointFrom(in), d = pointFrom(in);
            const double t = vgfuzz::number(in, 7.0);
            _s_hd_prof_* obj = nullptr;
            if (kind == 0)
                obj = ep_divide_str(outline, a, b, d);
            else if (kind == 1)
                obj = ep_divide_pline(outline, d);
            else if (kind == 2)
                obj = ep_divide_pline(outline, t);
            else
                obj = ep_divide_arc(outline, a, b, d, t, pointFrom(in));
            freePoint(outline);
            return obj;
        }
        case 18: {
            const P o = pointFrom(in), x = pointFrom(in), y = pointFrom(in), c = pointFrom(in);
            const double w = vgfuzz::number(in), h = vgfuzz::number(in), r = vgfuzz::number(in);
            return ep_divide_squcir(o, w, h, x, y, c, r);
        }
        default: {
            const double ri = vgfuzz::number(in), ro = vgfuzz::number(in);
            const double t = vgfuzz::number(in);
            const P c = pointFrom(in);
            const double a0 = vgfuzz::number(in), a1 = vgfuzz::number(in);
            if (in.ConsumeBool())
                return ep_divide_sad(ri, ro, t, c, a0, a1);
            return ep_divide_sad(ri, ro, t, c, a0, a1, pointFrom(in));
        }
    }
}

bool finite(P p) {
    return vgfuzz::ordinary({p.x, p.y, p.z}, 1e300);
}

// Every vertex and line end lies within the box.
void checkBox(const _s_hd_prof_* obj) {
    const double* b = obj->box;
    auto inside = [b](P p) {
        return !finite(p) || (p.x <= b[0] && p.x >= b[1] && p.y <= b[2] && p.y >= b[3] &&
                              p.z <= b[4] && p.z >= b[5]);
    };
    for (const _s_hd_prosect_* f = obj->prosect; f != nullptr; f = f->next)
        for (const _s_hd_sect_* v = f->sect; v != nullptr; v = v->next)
            VG_FUZZ_CHECK(inside(v->pt), "the box holds every vertex");
    for (const _s_hd_proline_* l = obj->proline; l != nullptr; l = l->next)
        VG_FUZZ_CHECK(inside(l->start) && inside(l->end), "the box holds every line");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The same scene twice from the same bytes: the tessellators and face intersection are
    // deterministic, and the engine and the reference pass each re-orient their own copy.
    auto build = [&](bool first) {
        FuzzedDataProvider in(data, size);
        const int n = in.ConsumeIntegralInRange<int>(1, 6);
        std::vector<_s_hd_prof_*> objs;
        for (int k = 0; k < n; ++k) {
            objs.push_back(primitiveFrom(in));
            if (first && objs.back() != nullptr)
                checkBox(objs.back());
        }
        if (in.ConsumeBool())
            enginetest::registerAll(objs);
        return objs;
    };
    std::vector<_s_hd_prof_*> objs = build(true), copies = build(false);

    _s_hd_proline_* engine = kestHideObject(objs.data(), static_cast<int>(objs.size()));
    _s_hd_proline_* reference =
        kestHideObjectReference(copies.data(), static_cast<int>(copies.size()));
    VG_FUZZ_CHECK(enginetest::firstDifference(engine, reference) < 0,
                  "the engine gives what the reference pass gives, node for node");
    const char* problem = enginetest::piecesProblem(objs, engine);
    VG_FUZZ_CHECK(problem == nullptr, problem);

    releaseProline(engine);
    releaseProline(reference);
    for (size_t k = 0; k < objs.size(); ++k) {
        freeHDProfObjectPointer(objs[k]);
        freeHDProfObjectPointer(copies[k]);
    }
    return 0;
}
