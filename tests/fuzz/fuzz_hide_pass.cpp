// Fuzz target: scenes of every tessellator (the elbow, the head and the swept solids included),
// registered for face intersection, through the hide pass, the objects side by side in the array
// or 64 places apart (null entries between them). Checks that every box holds its object,
// that the engine gives what the plain step-by-step pass gives, node for node and bit for bit (on
// scenes that pass can finish in time), and that the visible pieces lie on their lines, in order
// from each line's near end and disjoint; and that dropping the repeated ones takes what it counts.
#include <cmath>
#include <tuple>
#include <type_traits>
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

// One argument read from the bytes: a number, or a point.
template <class T>
T read(FuzzedDataProvider& in) {
    if constexpr (std::is_same_v<T, P>)
        return vgfuzz::triple<P>(in);
    else
        return vgfuzz::number(in);
}

// The arguments of a call read in the order they are given: the elements of a braced list are
// evaluated in order, where a call's arguments are not.
template <class... A>
std::tuple<A...> args(FuzzedDataProvider& in) {
    return std::tuple<A...>{read<A>(in)...};
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
            const auto [a, b, c, p, u, v] = args<double, double, double, P, P, P>(in);
            return ep_divide_box(a, b, c, p, u, v, in.ConsumeIntegralInRange<int>(0, 1));
        }
        case 1:
            return std::apply(ep_divide_wed, args<P, P, P, double>(in));
        case 2: {
            const P a = read<P>(in), b = read<P>(in), s = read<P>(in);
            const int n = in.ConsumeIntegralInRange<int>(-2, 24);
            // A chosen count follows a sagitta of 0.01: a radius of 1e154 would ask for the
            // largest count there is, and the pass would take minutes, not find more.
            if (n == 0 && !(pointDist2(s, a) <= 1e4))
                return nullptr;
            return ep_divide_pri(a, b, s, n);
        }
        case 3:
            return std::apply(ep_divide_pln, args<P, P>(in));
        case 4: {
            point* list = pointListFrom(in);
            _s_hd_prof_* obj = ep_divide_plns(list);
            freePoint(list);
            return obj;
        }
        case 5:
            return std::apply(ep_divide_cir, args<P, double, P>(in));
        case 6:
            return std::apply(ep_divide_con, args<P, P, double, double>(in));
        case 7:
            return std::apply(ep_divide_ecn, args<P, P, double, double, P>(in));
        case 8: {
            // A sagitta far below the radius asks for the largest count there is, doubled on a
            // nearly edge-on side: the pass would take long and find no more.
            const auto [rb, rt, h, xoff, yoff, o, x, y, z, sag] =
                args<double, double, double, double, double, P, P, P, P, double>(in);
            if (!(sag >= 1e-3 * std::fabs(rb) && sag >= 1e-3 * std::fabs(rt)))
                return nullptr;
            return ep_divide_scn(rb, rt, h, xoff, yoff, o, x, y, z, sag);
        }
        case 9:
            return std::apply(ep_divide_scy, args<P, P, double, P>(in));
        case 10:
            return std::apply(ep_divide_sph, args<P, double>(in));
        case 12: {
            // An elbow: its start mostly placed square to the axis, as a drawing program does.
            const double r = vgfuzz::number(in), angle = vgfuzz::number(in, 7.0);
            const P c = read<P>(in), axis = read<P>(in);
            P s = read<P>(in);
            const double bend = vgfuzz::number(in);
            if (in.ConsumeBool()) {
                const double l2 = vecDot(axis, axis);
                const P off = linComb(1.0, s, l2 > 0 ? -vecDot(s, axis) / l2 : 0.0, axis);
                if (vecDot(off, off) > 0)
                    s = linComb(1.0, c, bend / std::sqrt(vecDot(off, off)), off);
            }
            return ep_divide_tor(r, angle, c, s, axis, in.ConsumeIntegralInRange<int>(0, 16));
        }
        case 13:
            return std::apply(ep_divide_ova, args<double, double, double, P, P>(in));
        case 15:
        case 16:
        case 17: {
            // A member, a plate (by a vector or a thickness) or a bend of a fuzzed outline.
            const int kind = in.ConsumeIntegralInRange<int>(0, 3);
            point* outline = pointListFrom(in);
            const P a = read<P>(in), b = read<P>(in), d = read<P>(in);
            const double t = vgfuzz::number(in, 7.0);
            _s_hd_prof_* obj = nullptr;
            if (kind == 0)
                obj = ep_divide_str(outline, a, b, d);
            else if (kind == 1)
                obj = ep_divide_pline(outline, d);
            else if (kind == 2)
                obj = ep_divide_pline(outline, t);
            else
                obj = ep_divide_arc(outline, a, b, d, t, read<P>(in));
            freePoint(outline);
            return obj;
        }
        case 18: {
            const auto [o, x, y, c, w, h, r] = args<P, P, P, P, double, double, double>(in);
            return ep_divide_squcir(o, w, h, x, y, c, r);
        }
        default: {
            const auto [ri, ro, t, c, a0, a1] = args<double, double, double, P, double, double>(in);
            if (in.ConsumeBool())
                return ep_divide_sad(ri, ro, t, c, a0, a1);
            return ep_divide_sad(ri, ro, t, c, a0, a1, read<P>(in));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The same scene twice from the same bytes: the tessellators and face intersection are
    // deterministic, and the engine and the reference pass each re-orient their own copy.
    // A tube thousands of times wider than its bend takes the largest ring counts and overlaps
    // itself everywhere: face intersection meets every face with every other, some 5e8 pairs and
    // over half a minute under the sanitizers. Scenes of more faces than this are not registered.
    constexpr double kRegisteredFacesMost = 8000;
    auto build = [&](bool first) {
        FuzzedDataProvider in(data, size);
        const int n = in.ConsumeIntegralInRange<int>(1, 6);
        std::vector<_s_hd_prof_*> objs;
        for (int k = 0; k < n; ++k) {
            objs.push_back(primitiveFrom(in));
            if (first && objs.back() != nullptr)
                VG_FUZZ_CHECK(enginetest::boxHoldsPoints(objs.back()),
                              "the box holds every vertex and line end");
        }
        if (in.ConsumeBool() && enginetest::countsOf(objs).faces <= kRegisteredFacesMost)
            enginetest::registerAll(objs);
        // Objects 64 places apart, with no object between them, share the engine's slots for
        // the faces it keeps: the faces of all but one are read into its spill room.
        if (in.ConsumeBool()) {
            std::vector<_s_hd_prof_*> spread(64 * (objs.size() - 1) + 1, nullptr);
            for (std::size_t k = 0; k < objs.size(); ++k)
                spread[64 * k] = objs[k];
            objs.swap(spread);
        }
        return objs;
    };
    std::vector<_s_hd_prof_*> objs = build(true);
    // The reference pass tries every line against every face, at about a million pairs a second
    // under the sanitizers: an elbow some 1e307 across (the largest chord counts there are), or
    // thousands of lines of face intersection on one object, would keep it busy past the run's
    // time limit. Such a scene is held to the engine's own promises only.
    constexpr double kReferencePairsMost = 2e6;
    const enginetest::Counts all = enginetest::countsOf(objs);
    std::vector<_s_hd_prof_*> copies;
    if (all.lines * all.faces <= kReferencePairsMost)
        copies = build(false);

    _s_hd_proline_* engine = kestHideObject(objs.data(), static_cast<int>(objs.size()));
    _s_hd_proline_* reference = nullptr;
    if (!copies.empty()) {
        reference = kestHideObjectReference(copies.data(), static_cast<int>(copies.size()));
        VG_FUZZ_CHECK(enginetest::firstDifference(engine, reference) < 0,
                      "the engine gives what the reference pass gives, node for node");
    }
    const char* problem = enginetest::piecesProblem(objs, engine);
    VG_FUZZ_CHECK(problem == nullptr, problem);
    // Dropping repeated pieces takes no more than it says it drops, whatever the pieces are.
    long before = 0;
    for (const _s_hd_proline_* p = engine; p != nullptr; p = p->next)
        ++before;
    const long dropped = dropRepeatedProlines(engine, 1e-6);
    for (const _s_hd_proline_* p = engine; p != nullptr; p = p->next)
        --before;
    VG_FUZZ_CHECK(dropped >= 0 && before == dropped, "the repeats dropped are the pieces gone");

    releaseProline(engine);
    releaseProline(reference);
    for (_s_hd_prof_* obj : objs)
        freeHDProfObjectPointer(obj);
    for (_s_hd_prof_* obj : copies)
        freeHDProfObjectPointer(obj);
    return 0;
}
