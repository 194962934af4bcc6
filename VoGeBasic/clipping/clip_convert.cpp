#include "clip_convert.h"

#include "VoGeVector3D.h"
#include "clipping/clip_list.h"
#include "clipping/clip_ring.h"

namespace geolib {

using clip::ListBuilder;

namespace {

// A ring of edges through the n corners, edge i from corner i to corner i + 1 (mod n), in a
// new polygon; null when an allocation fails (nothing is left allocated then).
convex* ringThrough(const VoGePoint3D* corners, std::size_t n) {
    ListBuilder<line> edges;
    for (std::size_t i = 0; i < n; ++i) {
        line* e = mallocLine();
        if (e == nullptr) {
            freeLine(edges.head);
            return nullptr;
        }
        e->start = corners[i];
        e->end = corners[(i + 1) % n];
        edges.append(e);
    }
    convex* poly = mallocConvex();
    if (poly == nullptr) {
        freeLine(edges.head);
        return nullptr;
    }
    edges.tail->next = edges.head;  // close the ring
    poly->edges = edges.head;
    return poly;
}

}  // namespace

convex* convertBox2Convex(BOX* box) {
    if (box == nullptr)
        return nullptr;
    const VoGePoint3D corners[4] = {
        VoGePoint3D(box->xmin, box->ymin, 0.0), VoGePoint3D(box->xmax, box->ymin, 0.0),
        VoGePoint3D(box->xmax, box->ymax, 0.0), VoGePoint3D(box->xmin, box->ymax, 0.0)};
    return ringThrough(corners, 4);
}

void transformBOX(BOX& box, const VoGeMatrix3D& m) {
    VoGePoint3D lo(box.xmin, box.ymin, 0.0);
    m.postMult(lo);
    box.xmin = lo.x;
    box.ymin = lo.y;
    VoGePoint3D hi(box.xmax, box.ymax, 0.0);
    m.postMult(hi);
    box.xmax = hi.x;
    box.ymax = hi.y;
}

void transformConvex(convex* polys, const VoGeMatrix3D& m) {
    for (convex* poly = polys; poly != nullptr; poly = poly->next) {
        clip::walkRing(poly->edges, [&](line* e) {
            m.postMult(e->start);
            m.postMult(e->end);
            return true;
        });
    }
}

convex* transPtArray2Convex(const std::vector<VoGePoint3D>& pts) {
    if (pts.empty())
        return nullptr;
    return ringThrough(pts.data(), pts.size());
}

void transConvex2PtArray(const convex* polys, std::vector<VoGePoint3D>& pts) {
    // Built aside and swapped in, so that a failed allocation leaves pts as it was.
    std::vector<VoGePoint3D> ring;
    if (polys != nullptr) {
        clip::walkRing(static_cast<const line*>(polys->edges), [&](const line* e) {
            ring.push_back(e->start);
            return true;
        });
    }
    pts.swap(ring);
}

line_cut* transLine(line* lines) {
    ListBuilder<line_cut> out;
    bool failed = false;
    clip::walkRing(lines, [&](line* l) {
        line_cut* piece = mallocLineCut(l->start, l->end);
        if (piece == nullptr) {
            failed = true;
            return false;
        }
        out.append(piece);
        return true;
    });
    if (failed) {
        freeLineCut(out.head);
        return nullptr;
    }
    return out.head;
}

line* transLineCut(line_cut* pieces) {
    ListBuilder<line> out;
    for (line_cut* lc = pieces; lc != nullptr; lc = lc->next) {
        const VoGeVector3D d = lc->end - lc->start;
        for (paramt* p = lc->params; p != nullptr; p = p->next) {
            line* l = mallocLine();
            if (l == nullptr) {
                freeLine(out.head);
                return nullptr;
            }
            l->start = lc->start + d * p->t0;
            l->end = lc->start + d * p->t1;
            out.append(l);
        }
    }
    return out.head;
}

paramt* copyParamt(const paramt* list) {
    ListBuilder<paramt> out;
    for (const paramt* p = list; p != nullptr; p = p->next) {
        paramt* c = mallocParamt(false);
        if (c == nullptr) {
            freeParamt(out.head);
            return nullptr;
        }
        c->t0 = p->t0;
        c->t1 = p->t1;
        out.append(c);
    }
    return out.head;
}

}  // namespace geolib
