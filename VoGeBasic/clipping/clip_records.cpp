#include "clip_records.h"

#include <cstdlib>

#include "clipping/clip_tolerances.h"
#include "core/constants.h"

namespace geolib {

namespace {

template <class T>
T* allocRecord() {
    return static_cast<T*>(std::malloc(sizeof(T)));
}

// The one walk shared by the lists whose records own nothing.
template <class T>
void freeChain(T* list) {
    while (list != nullptr) {
        T* next = list->next;
        std::free(list);
        list = next;
    }
}

}  // namespace

// ---- allocation ------------------------------------------------------------------------------

paramt* mallocParamt(bool isArc) {
    paramt* p = allocRecord<paramt>();
    if (p == nullptr)
        return nullptr;
    p->next = nullptr;
    p->t0 = 0.0;
    p->t1 = isArc ? core::kFullTurn : 1.0;
    return p;
}

line* mallocLine() {
    line* l = allocRecord<line>();
    if (l != nullptr)
        l->next = nullptr;
    return l;
}

line_cut* mallocLineCut() {
    line_cut* l = allocRecord<line_cut>();
    if (l == nullptr)
        return nullptr;
    l->next = nullptr;
    l->params = nullptr;
    return l;
}

line_cut* mallocLineCut(const VoGePoint3D& s, const VoGePoint3D& e) {
    line_cut* l = mallocLineCut();
    if (l == nullptr)
        return nullptr;
    l->params = mallocParamt(false);
    if (l->params == nullptr) {
        std::free(l);
        return nullptr;
    }
    l->start = s;
    l->end = e;
    return l;
}

line_cut* mallocLineCut(double* const s, double* const e) {
    return mallocLineCut(VoGePoint3D(s), VoGePoint3D(e));
}

arc* mallocArc() {
    arc* a = allocRecord<arc>();
    if (a != nullptr)
        a->next = nullptr;
    return a;
}

arc_cut* mallocArcCut() {
    arc_cut* a = allocRecord<arc_cut>();
    if (a == nullptr)
        return nullptr;
    a->next = nullptr;
    a->params = nullptr;
    return a;
}

arc_cut* mallocArcCut(const double* const c, double r, double a0, double a1) {
    arc_cut* a = mallocArcCut();
    if (a == nullptr)
        return nullptr;
    a->params = mallocParamt(false);
    if (a->params == nullptr) {
        std::free(a);
        return nullptr;
    }
    a->params->t0 = a0;
    a->params->t1 = a1;
    a->center = VoGePoint3D(c);
    a->radius = r;
    a->startAngle = a0;
    a->endAngle = a1;
    return a;
}

circle* mallocCircle() {
    circle* c = allocRecord<circle>();
    if (c != nullptr)
        c->next = nullptr;
    return c;
}

point* mallocPoint() {
    point* p = allocRecord<point>();
    if (p == nullptr)
        return nullptr;
    p->next = nullptr;
    p->param = 0.0;
    return p;
}

convex* mallocConvex() {
    convex* c = allocRecord<convex>();
    if (c == nullptr)
        return nullptr;
    c->next = nullptr;
    c->edges = nullptr;
    return c;
}

// ---- release -----------------------------------------------------------------------------------

void freeParamt(paramt* list) {
    freeChain(list);
}
void freeCircle(circle* list) {
    freeChain(list);
}
void freeArc(arc* list) {
    freeChain(list);
}
void freePoint(point* list) {
    freeChain(list);
}

void freeLine(line* list) {
    line* const first = list;
    while (list != nullptr) {
        line* next = list->next;
        std::free(list);
        if (next == first)
            break;  // back at the start of a ring
        list = next;
    }
}

void freeLineCut(line_cut* list) {
    while (list != nullptr) {
        line_cut* next = list->next;
        freeParamt(list->params);
        std::free(list);
        list = next;
    }
}

void freeArcCut(arc_cut* list) {
    while (list != nullptr) {
        arc_cut* next = list->next;
        freeParamt(list->params);
        std::free(list);
        list = next;
    }
}

void freeConvex(convex* list) {
    while (list != nullptr) {
        convex* next = list->next;
        freeLine(list->edges);
        std::free(list);
        list = next;
    }
}

// ---- BOX ---------------------------------------------------------------------------------------

BOX::BOX()
    : xmin(core::kEmptyPlanBoxMin),
      xmax(-core::kEmptyPlanBoxMin),
      ymin(core::kEmptyPlanBoxMin),
      ymax(-core::kEmptyPlanBoxMin) {}

void BOX::set(double xmin_, double xmax_, double ymin_, double ymax_) {
    xmin = xmin_;
    xmax = xmax_;
    ymin = ymin_;
    ymax = ymax_;
}

void BOX::set(const VoGePoint3D& a, const VoGePoint3D& b) {
    set(a.x, b.x, a.y, b.y);
}

void BOX::set(double* const a, double* const b) {
    set(a[0], b[0], a[1], b[1]);
}

void BOX::set1(const VoGePoint3D& a, const VoGePoint3D& b) {
    set(a.x < b.x ? a.x : b.x, a.x < b.x ? b.x : a.x, a.y < b.y ? a.y : b.y, a.y < b.y ? b.y : a.y);
}

void BOX::getLbrt(VoGePoint3D& lb, VoGePoint3D& rt) const {
    lb.set(xmin, ymin, 0.0);
    rt.set(xmax, ymax, 0.0);
}

namespace {

// v lies within [lo, hi] or beyond a bound by no more than the box tolerance.
bool withinSides(double v, double lo, double hi) {
    if (v < lo && lo - v > clip::kBoxContainTol)
        return false;
    if (v > hi && v - hi > clip::kBoxContainTol)
        return false;
    return true;
}

}  // namespace

bool BOX::contains(const VoGePoint3D& p) const {
    return withinSides(p.x, xmin, xmax) && withinSides(p.y, ymin, ymax);
}

void BOX::expand(const VoGePoint3D& p) {
    if (p.x < xmin)
        xmin = p.x;
    if (p.x > xmax)
        xmax = p.x;
    if (p.y < ymin)
        ymin = p.y;
    if (p.y > ymax)
        ymax = p.y;
}

void BOX::update(const BOX& o) {
    if (o.xmin < xmin)
        xmin = o.xmin;
    if (o.xmax > xmax)
        xmax = o.xmax;
    if (o.ymin < ymin)
        ymin = o.ymin;
    if (o.ymax > ymax)
        ymax = o.ymax;
}

// The sign is the drawing code's: swell(d) with d > 0 pulls every side in by d.
BOX& BOX::swell(double d) {
    xmin += d;
    xmax -= d;
    ymin += d;
    ymax -= d;
    return *this;
}

// ---- Box3D -------------------------------------------------------------------------------------

void Box3D::set(const VoGePoint3D& a, const VoGePoint3D& b) {
    min = a;
    max = b;
}

void Box3D::set1(const VoGePoint3D& a, const VoGePoint3D& b) {
    for (unsigned int i = 0; i < 3; ++i) {
        min[i] = a[i] < b[i] ? a[i] : b[i];
        max[i] = a[i] < b[i] ? b[i] : a[i];
    }
}

bool Box3D::contain(const VoGePoint3D& p) const {
    return withinSides(p.x, min.x, max.x) && withinSides(p.y, min.y, max.y) &&
           withinSides(p.z, min.z, max.z);
}

bool Box3D::intersectWith(const Box3D& o) const {
    if (max.x < o.min.x || o.max.x < min.x)
        return false;
    if (max.y < o.min.y || o.max.y < min.y)
        return false;
    if (max.z < o.min.z || o.max.z < min.z)
        return false;
    return true;
}

}  // namespace geolib
