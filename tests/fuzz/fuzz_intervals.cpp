// Fuzz target: sequences of cuts on the interval lists of a straight piece and of a circle,
// with the hidden gaps and the fitting interval asked for between them. Checks that the lists
// stay within their domain, sorted and disjoint, and that the gaps are their complement.
#include <vector>

#include "clip_params.h"
#include "clip_records.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

using namespace geolib;

using vgtest::kTwoPi;
constexpr double kEnd = 1e-6;  // ends closer than this are the same end

struct Span {
    double t0, t1;
};

std::vector<Span> spans(const paramt* list) {
    std::vector<Span> out;
    for (; list != nullptr; list = list->next)
        out.push_back({list->t0, list->t1});
    return out;
}

// The pieces of the turn an arc interval covers: one, or two for an interval through 0.
std::vector<Span> onTurn(Span s) {
    if (s.t1 < s.t0)
        return {{s.t0, kTwoPi}, {0.0, s.t1}};
    return {s};
}

double overlap(Span a, Span b) {
    const double lo = a.t0 > b.t0 ? a.t0 : b.t0;
    const double hi = a.t1 < b.t1 ? a.t1 : b.t1;
    return hi - lo;
}

bool covers(const std::vector<Span>& list, double x, bool isArc) {
    for (const Span& s : list) {
        for (const Span& p : isArc ? onTurn(s) : std::vector<Span>{s}) {
            if (x >= p.t0 && x <= p.t1)
                return true;
        }
    }
    return false;
}

void checkList(const paramt* list, bool isArc) {
    const std::vector<Span> v = spans(list);
    const double end = isArc ? kTwoPi : 1.0;
    for (size_t i = 0; i < v.size(); ++i) {
        VG_FUZZ_CHECK(v[i].t0 >= 0.0 && v[i].t0 <= end && v[i].t1 >= 0.0 && v[i].t1 <= end,
                      "intervals stay within their domain");
        if (!isArc) {
            VG_FUZZ_CHECK(v[i].t0 <= v[i].t1, "line intervals run forward");
            if (i > 0)
                VG_FUZZ_CHECK(v[i - 1].t1 <= v[i].t0 + kEnd, "line intervals sorted, disjoint");
        }
        for (size_t j = 0; isArc && j < i; ++j) {
            for (const Span& a : onTurn(v[i]))
                for (const Span& b : onTurn(v[j]))
                    VG_FUZZ_CHECK(overlap(a, b) <= kEnd, "arc intervals disjoint");
        }
    }
    // The gaps are sorted, disjoint and hidden; what lies between them is visible.
    paramt* gaps = getHideParamt(const_cast<paramt*>(list), 0.0, end, isArc);
    const std::vector<Span> g = spans(gaps);
    for (size_t i = 0; i < g.size(); ++i) {
        VG_FUZZ_CHECK(g[i].t0 <= g[i].t1 && g[i].t0 >= 0.0 && g[i].t1 <= end,
                      "gaps run forward within the domain");
        if (i > 0)
            VG_FUZZ_CHECK(g[i - 1].t1 <= g[i].t0 + kEnd, "gaps sorted and disjoint");
        if (g[i].t1 - g[i].t0 > 4 * kEnd)
            VG_FUZZ_CHECK(!covers(v, 0.5 * (g[i].t0 + g[i].t1), isArc), "a gap is hidden");
    }
    freeParamt(gaps);
}

double cutEnd(FuzzedDataProvider& in, bool isArc) {
    const unsigned k = in.ConsumeIntegralInRange<unsigned>(0, 7);
    const double end = isArc ? kTwoPi : 1.0;
    if (k == 0)
        return vgfuzz::number(in, 2.0);  // anything, the non-finite values included
    if (k == 1)
        return in.ConsumeBool() ? 0.0 : end;
    return in.ConsumeFloatingPointInRange<double>(isArc ? 0.0 : -0.25, isArc ? end : 1.25);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    paramt* lines = mallocParamt(false);
    paramt* arcs = mallocParamt(true);
    VG_FUZZ_CHECK(lines != nullptr && arcs != nullptr, "memory for the lists");
    while (in.remaining_bytes() > 0) {
        const bool isArc = in.ConsumeBool();
        paramt*& list = isArc ? arcs : lines;
        const double a = cutEnd(in, isArc);
        const double b = cutEnd(in, isArc);
        switch (in.ConsumeIntegralInRange<int>(0, 3)) {
            case 0:
            case 1:
                subParamt(list, a, b, isArc);
                break;
            case 2: {
                const paramt* fit = findFitParamt(list, a, b);
                bool inList = fit == nullptr;
                for (const paramt* p = list; p != nullptr; p = p->next)
                    inList = inList || p == fit;
                VG_FUZZ_CHECK(inList, "the fitting interval is one of the list");
                break;
            }
            default: {
                paramt* gaps = getHideParamt(list, a, b, isArc);
                freeParamt(gaps);
                break;
            }
        }
        checkList(list, isArc);
    }
    freeParamt(lines);
    freeParamt(arcs);
    return 0;
}
