// The grid over the objects' XY boxes that narrows the candidate search of the hide pass and of
// face intersection.
#include "hidden_line/engine/box_index.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace geolib {

namespace {

// Boxes with a coordinate beyond this are not filed in cells (the grid's arithmetic stays far
// from overflow); they are yielded to every query instead.
constexpr double kGridCoordLimit = 1e15;
// The grid has about this many cells per filed object, and at most kMaxGridSide a side.
constexpr double kCellsPerObject = 1.0;
constexpr double kMaxGridSide = 4096.0;
// An object spanning more cells than this is yielded to every query rather than filed in each.
constexpr long kMaxCellsPerObject = 64;

template <class T>
T* allocArray(size_t n) {
    return static_cast<T*>(std::malloc((n > 0 ? n : 1) * sizeof(T)));
}

}  // namespace

BoxIndex::~BoxIndex() {
    release();
}

void BoxIndex::release() {
    std::free(present_);
    std::free(wide_);
    std::free(start_);
    std::free(cellItems_);
    std::free(stamp_);
    present_ = wide_ = start_ = cellItems_ = nullptr;
    stamp_ = nullptr;
    n_ = presentCount_ = wideCount_ = 0;
    items_ = 0;
    cols_ = rows_ = 0;
    query_ = 0;
}

bool BoxIndex::fileable(const double* box) {
    // Written so that NaN fails every test.
    return box[1] <= box[0] && box[3] <= box[2] && box[1] >= -kGridCoordLimit &&
           box[0] <= kGridCoordLimit && box[3] >= -kGridCoordLimit && box[2] <= kGridCoordLimit;
}

int BoxIndex::column(double x) const {
    const double c = std::floor((x - x0_) / cell_);
    return c < 0.0 ? 0 : c >= cols_ - 1 ? cols_ - 1 : static_cast<int>(c);
}

int BoxIndex::row(double y) const {
    const double r = std::floor((y - y0_) / cell_);
    return r < 0.0 ? 0 : r >= rows_ - 1 ? rows_ - 1 : static_cast<int>(r);
}

bool BoxIndex::build(_s_hd_prof_* const* objs, int n) {
    release();
    const size_t count = n > 0 ? static_cast<size_t>(n) : 0;
    present_ = allocArray<int>(count);
    wide_ = allocArray<int>(count);
    stamp_ = allocArray<unsigned>(count);
    double* extents = allocArray<double>(count);
    if (present_ == nullptr || wide_ == nullptr || stamp_ == nullptr || extents == nullptr) {
        std::free(extents);
        return false;
    }
    n_ = n > 0 ? n : 0;
    // The filed boxes' common range, and their sizes for the cell size.
    double xlo = 0.0, xhi = 0.0, ylo = 0.0, yhi = 0.0;
    size_t filed = 0;
    for (int i = 0; i < n_; ++i) {
        stamp_[i] = 0;
        if (objs[i] == nullptr)
            continue;
        present_[presentCount_++] = i;
        const double* b = objs[i]->box;
        if (!fileable(b))
            continue;
        if (filed == 0) {
            xlo = b[1], xhi = b[0], ylo = b[3], yhi = b[2];
        } else {
            xlo = std::min(xlo, b[1]), xhi = std::max(xhi, b[0]);
            ylo = std::min(ylo, b[3]), yhi = std::max(yhi, b[2]);
        }
        extents[filed++] = std::max(b[0] - b[1], b[2] - b[3]);
    }
    // Cells no smaller than the typical object, and about kCellsPerObject of them per object.
    double typical = 0.0;
    if (filed > 0) {
        std::nth_element(extents, extents + filed / 2, extents + filed);
        typical = extents[filed / 2];
    }
    std::free(extents);
    const double width = xhi - xlo;
    const double height = yhi - ylo;
    double cell = std::sqrt(width * height / (kCellsPerObject * static_cast<double>(filed + 1)));
    cell = std::max(cell, typical);
    cell = std::max(cell, std::max(width, height) / kMaxGridSide);
    if (!(cell > 0.0))
        cell = 1.0;
    x0_ = xlo;
    y0_ = ylo;
    cell_ = cell;
    cols_ = static_cast<int>(std::min(std::floor(width / cell) + 1.0, kMaxGridSide));
    rows_ = static_cast<int>(std::min(std::floor(height / cell) + 1.0, kMaxGridSide));
    const size_t cells = static_cast<size_t>(cols_) * static_cast<size_t>(rows_);

    // Two passes over the filed objects: count each cell's objects, then file them in object
    // order, so that every cell lists its objects ascending.
    start_ = allocArray<int>(cells + 1);
    if (start_ == nullptr)
        return false;
    std::fill(start_, start_ + cells + 1, 0);
    size_t items = 0;
    for (int k = 0; k < presentCount_; ++k) {
        const double* b = objs[present_[k]]->box;
        if (!fileable(b))
            continue;
        const long span = static_cast<long>(column(b[0]) - column(b[1]) + 1) *
                          static_cast<long>(row(b[2]) - row(b[3]) + 1);
        if (span > kMaxCellsPerObject)
            continue;
        for (int r = row(b[3]); r <= row(b[2]); ++r) {
            for (int c = column(b[1]); c <= column(b[0]); ++c)
                ++start_[static_cast<size_t>(r) * cols_ + c + 1];
        }
        items += static_cast<size_t>(span);
    }
    for (size_t c = 0; c < cells; ++c)
        start_[c + 1] += start_[c];
    items_ = items;
    cellItems_ = allocArray<int>(items);
    int* fill = allocArray<int>(cells);
    if (cellItems_ == nullptr || fill == nullptr) {
        std::free(fill);
        return false;
    }
    std::copy(start_, start_ + cells, fill);
    for (int k = 0; k < presentCount_; ++k) {
        const int i = present_[k];
        const double* b = objs[i]->box;
        const bool filedHere =
            fileable(b) && static_cast<long>(column(b[0]) - column(b[1]) + 1) *
                                   static_cast<long>(row(b[2]) - row(b[3]) + 1) <=
                               kMaxCellsPerObject;
        if (!filedHere) {
            wide_[wideCount_++] = i;
            continue;
        }
        for (int r = row(b[3]); r <= row(b[2]); ++r) {
            for (int c = column(b[1]); c <= column(b[0]); ++c)
                cellItems_[fill[static_cast<size_t>(r) * cols_ + c]++] = i;
        }
    }
    std::free(fill);
    return true;
}

size_t BoxIndex::bytes() const {
    const size_t cells = static_cast<size_t>(cols_) * static_cast<size_t>(rows_);
    return static_cast<size_t>(n_) * (2 * sizeof(int) + sizeof(unsigned)) +
           (cells + 1 + items_) * sizeof(int);
}

int BoxIndex::near(const double* box, int limit, int* out) {
    int count = 0;
    if (start_ == nullptr || cellItems_ == nullptr)
        return 0;
    if (!fileable(box)) {
        for (int k = 0; k < presentCount_ && present_[k] < limit; ++k)
            out[count++] = present_[k];
        return count;
    }
    if (++query_ == 0) {
        // The stamps wrapped: clear them so that no old stamp matches again.
        std::fill(stamp_, stamp_ + n_, 0u);
        query_ = 1;
    }
    for (int k = 0; k < wideCount_ && wide_[k] < limit; ++k) {
        stamp_[wide_[k]] = query_;
        out[count++] = wide_[k];
    }
    for (int r = row(box[3]); r <= row(box[2]); ++r) {
        for (int c = column(box[1]); c <= column(box[0]); ++c) {
            const size_t cell = static_cast<size_t>(r) * cols_ + c;
            for (int at = start_[cell]; at < start_[cell + 1]; ++at) {
                const int j = cellItems_[at];
                if (j >= limit)
                    break;  // a cell lists its objects ascending
                if (stamp_[j] == query_)
                    continue;
                stamp_[j] = query_;
                out[count++] = j;
            }
        }
    }
    std::sort(out, out + count);
    return count;
}

}  // namespace geolib
