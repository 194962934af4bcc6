// VoGeMatrix3D: the 4x4 homogeneous transformation of the library.
//
// clang-format off
//
//   Sixteen doubles, row-major: element (r, c) is m[4*r + c].
//
//        | m[0]  m[1]  m[2]  | m[3]  |      upper-left 3x3 (M3): the linear part
//        | m[4]  m[5]  m[6]  | m[7]  |      column 3, rows 0..2:  the translation
//        | m[8]  m[9]  m[10] | m[11] |      row 3: normally (0, 0, 0, 1)
//        | m[12] m[13] m[14] | m[15] |
//
//   postMult: p' = M.p   (column vector; translation from column 3, row 3 unused, no w division)
//   preMult:  p' = p.M   (row vector; translation from row 3), kept for row-vector callers
//
//   A default-constructed matrix is the ZERO matrix, not the identity: call makeIdentity().
//
// clang-format on
//
// Row and column indices of type short are checked: an index outside 0..3 makes the call
// return at once without touching anything. operator() does not check its indices.
#ifndef VOGEBASIC_VOGEMATRIX3D_H
#define VOGEBASIC_VOGEMATRIX3D_H

#include <type_traits>

#include "VoGeBasicExport.h"
#include "VoGePoint3D.h"
#include "VoGeVector3D.h"

/// A 4x4 transformation matrix, sixteen doubles row by row (column-vector convention).
class VOGEBASIC_API VoGeMatrix3D {
public:
    double m[16];  ///< row-major elements

    /// The zero matrix.
    VoGeMatrix3D();
    /// Copying is the implicit copy of all sixteen doubles (kept trivial for the ABI).
    VoGeMatrix3D(const VoGeMatrix3D&) = default;
    /// Assigns bit for bit (a trivial copy, kept so for the binary interface).
    VoGeMatrix3D& operator=(const VoGeMatrix3D&) = default;
    /// Copies all sixteen doubles of b.
    void set(const VoGeMatrix3D& b);

    /// Element (r, c), row and column 0 to 3; the indices are not checked.
    double& operator()(unsigned int r, unsigned int c);
    /// Element (r, c), row and column 0 to 3; the indices are not checked.
    double operator()(unsigned int r, unsigned int c) const;

    /// Sets all sixteen elements to 0 (the zero matrix, also the default).
    VoGeMatrix3D& setZero();
    /// Zero, then the four diagonal elements to 1.
    const VoGeMatrix3D& makeIdentity();

    /// Row i (0 to 3) into a, b, c, d.
    void getRow(short i, double& a, double& b, double& c, double& d) const;
    /// Row i (0 to 3) set to a, b, c, d.
    void setRow(short i, const double& a, const double& b, const double& c, const double& d);
    /// Column i (0 to 3) into a, b, c, d.
    void getColumn(short i, double& a, double& b, double& c, double& d) const;
    /// Column i (0 to 3) set to a, b, c, d.
    void setColumn(short i, const double& a, const double& b, const double& c, const double& d);
    /// Row i times s.
    void row2Num(short i, const double& s);
    /// Column i times s.
    void column2Num(short i, const double& s);

    /// Length of column i (rows 0..2) for i = 0, 1, 2; 1.0 for any other i.
    double scale(short i) const;
    /// Identity with diagonal (scale(0), scale(1), scale(2), 1).
    VoGeMatrix3D extractScaleMatrix() const;
    /// Columns 0..2 divided by their scale, no translation. A zero column gives NaN.
    VoGeMatrix3D extractRotateMatrix() const;
    /// Identity carrying this matrix's translation.
    VoGeMatrix3D extractTranslationMatrix() const;

    /// General inverse (adjugate over determinant). A determinant of exactly 0.0 gives the zero
    /// matrix; there is no tolerance, so a determinant of 1e-300 is still inverted.
    VoGeMatrix3D inverse() const;
    /// Cheap inverse meant for rotation plus translation. Its 3x3 block comes out symmetric:
    /// the upper triangle is the transpose's, the lower triangle keeps this matrix's values.
    VoGeMatrix3D getInverseMatrix() const;

    /// Frame o + axes, with x, y, z normalised (shorter than 1e-4 become zero); no
    /// orthogonality check. Maps local to world coordinates with postMult.
    const VoGeMatrix3D& setCoordSystem(const VoGePoint3D& o, const VoGeVector3D& x,
                                       const VoGeVector3D& y, const VoGeVector3D& z);
    /// As setCoordSystem with the axes stored exactly as given (scale and shear kept).
    const VoGeMatrix3D& setCoordSystem_1(const VoGePoint3D& o, const VoGeVector3D& x,
                                         const VoGeVector3D& y, const VoGeVector3D& z);
    /// o = column 3, x/y/z = columns 0/1/2 (rows 0..2).
    void getCoordSystem(VoGePoint3D& o, VoGeVector3D& x, VoGeVector3D& y, VoGeVector3D& z) const;

    /// p := M.p in place (postMult mutates, postMult1 returns a copy).
    void postMult(VoGePoint3D& p) const;
    /// M.p as a new point (the translation applied), p left as it is.
    VoGePoint3D postMult1(const VoGePoint3D& p) const;
    /// v := M3.v in place; postMult1 returns a copy.
    void postMult(VoGeVector3D& v) const;
    /// M3.v as a new vector (no translation), v left as it is.
    VoGeVector3D postMult1(const VoGeVector3D& v) const;
    /// p := p.M in place (row-vector convention); preMult1 returns a copy.
    void preMult(VoGePoint3D& p) const;
    /// p.M as a new point (row-vector convention), p left as it is.
    VoGePoint3D preMult1(const VoGePoint3D& p) const;
    /// v := v.M3 in place; preMult1 returns a copy.
    void preMult(VoGeVector3D& v) const;
    /// v.M3 as a new vector, v left as it is.
    VoGeVector3D preMult1(const VoGeVector3D& v) const;
    /// out = M3.in on plain arrays of three doubles (in may be out).
    void matMultVec(double* const in, double* const out) const;
    /// out = in.M3 on plain arrays of three doubles (in may be out).
    void vecMultMat(double* const in, double* const out) const;

    /// this := this x b (b applied first to column vectors); postMult(*this) squares.
    const VoGeMatrix3D& postMult(const VoGeMatrix3D& b);
    /// this x b, this unchanged.
    VoGeMatrix3D postMult1(const VoGeMatrix3D& b) const;

    /// Projection onto the plane through the origin with normal n, then a translation by p
    /// (not by (n.p)n: pass the origin for the plain orthogonal projection).
    const VoGeMatrix3D& getProjectMatrix(const VoGePoint3D& p, const VoGeVector3D& n);
    /// Rotation by angle about the line p1 -> p2 (right-hand rule). Coincident points give a
    /// zero 3x3 block and zero translation.
    const VoGeMatrix3D& getRotateMatrix(const VoGePoint3D& p1, const VoGePoint3D& p2, double angle);
    /// Reflection in the plane through p with normal n.
    const VoGeMatrix3D& getReflectMatrix(const VoGePoint3D& p, const VoGeVector3D& n);
    /// Frame at the origin whose Z axis is z (arbitrary-axis rule), all axes normalised.
    const VoGeMatrix3D& setZTrans(const VoGeVector3D& z);
    /// As setZTrans, but X and Y keep the length |world axis x Z| (not rescaled).
    const VoGeMatrix3D& setZTrans_1(const VoGeVector3D& z);
    /// Z-axis frame at o with z as given: the 3x3 block holds the frame's axes as ROWS
    /// (world-to-local) while column 3 holds o. For z along +-X the block is fixed, with
    /// element (2, 2) = 1.
    const VoGeMatrix3D& getZaxisUcsMatrix(const VoGePoint3D& o, const VoGeVector3D& z);
};

static_assert(sizeof(VoGeMatrix3D) == 16 * sizeof(double), "VoGeMatrix3D is sixteen doubles");
static_assert(std::is_standard_layout<VoGeMatrix3D>::value, "VoGeMatrix3D is standard-layout");
static_assert(std::is_trivially_copyable<VoGeMatrix3D>::value, "VoGeMatrix3D copies bitwise");

#endif  // VOGEBASIC_VOGEMATRIX3D_H
