// The plant model file of vogedraw (docs/model_format.md): one primitive a line, in model
// coordinates (X east, Y north, Z up), with # comments and blank lines.
#ifndef VOGEDRAW_MODEL_READER_H
#define VOGEDRAW_MODEL_READER_H

#include <istream>
#include <string>
#include <vector>

namespace vogedraw {

/// The primitives of the model format, one per tessellator of the library.
enum class Kind {
    Box,
    OrientedBox,
    Wedge,
    Prism,
    Line,
    Polyline,
    Disc,
    Cone,
    Cylinder,
    EccentricCone,
    Snout,
    SlopedCylinder,
    Sphere,
    Elbow,
    Head,
    RingPlate,
    Member,
    Plate,
    Transition,
    Bend
};

/// One primitive as read: its kind, the keyword and line it came from and its numbers in the
/// order of the format (angles still in degrees).
struct Primitive {
    Kind kind;
    int line;
    std::vector<double> v;
};

/// Limits of the reader: larger values are refused as absurd rather than passed on.
constexpr double kMaxCoordinate = 1e6;  ///< largest magnitude of any number
constexpr int kMaxPolylinePoints = 100000;
constexpr int kMaxSectionPoints = 4096;  ///< of a member's section or a plate's outline
constexpr int kMaxBendSectionPoints = 256;
constexpr int kMaxPrimitives = 10000000;

/// The keyword of a kind ("box", "cone", ...).
const char* keywordOf(Kind kind);

/// Reads a model from in; name is the file name used in messages. On the first bad line returns
/// false with error set to one line: "NAME:LINE: ...", naming the field where one is at fault.
bool parseModel(std::istream& in, const std::string& name, std::vector<Primitive>& out,
                std::string& error);

/// Opens and reads the file at path (parseModel); a missing or unreadable file is an error too.
bool readModel(const std::string& path, std::vector<Primitive>& out, std::string& error);

}  // namespace vogedraw

#endif  // VOGEDRAW_MODEL_READER_H
