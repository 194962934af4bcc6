// Reader of the plant model format: a table of the primitives' keywords and fields, and one
// check per field (a finite number within the reader's limits; an integer where one is asked).
#include "model_reader.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include <sys/stat.h>

namespace vogedraw {
namespace {

// One primitive of the format: its fields, by name. A field named "n" must be an integer in
// 0..maxN (a thousand chords or sides: more only slow the hide pass down); a trailing "[n]" field
// may be left out (0). A form with points takes, after its fields, minPoints to maxPoints points
// of x y z (pointSize 3: a polyline, a plate's outline) or of x y (pointSize 2: a section in its
// own plane).
struct Form {
    Kind kind;
    const char* keyword;
    std::vector<const char*> fields;
    int maxN;
    int pointSize = 0;
    int minPoints = 0;
    int maxPoints = 0;
};

const std::vector<Form>& forms() {
    static const std::vector<Form> table = {
        {Kind::Box, "box", {"x", "y", "z", "dx", "dy", "dz"}, 0},
        {Kind::OrientedBox,
         "obox",
         {"x", "y", "z", "a", "b", "c", "ux", "uy", "uz", "vx", "vy", "vz"},
         0},
        {Kind::Wedge, "wedge", {"ax", "ay", "az", "bx", "by", "bz", "cx", "cy", "cz", "h"}, 0},
        {Kind::Prism, "prism", {"ax", "ay", "az", "bx", "by", "bz", "sx", "sy", "sz", "n"}, 1000},
        {Kind::Line, "line", {"x0", "y0", "z0", "x1", "y1", "z1"}, 0},
        {Kind::Polyline, "polyline", {}, 0, 3, 2, kMaxPolylinePoints},
        {Kind::Disc, "disc", {"cx", "cy", "cz", "r", "nx", "ny", "nz"}, 0},
        {Kind::Cone, "cone", {"ax", "ay", "az", "bx", "by", "bz", "ra", "rb"}, 0},
        {Kind::Cylinder, "cylinder", {"ax", "ay", "az", "bx", "by", "bz", "r"}, 0},
        {Kind::EccentricCone,
         "econe",
         {"ax", "ay", "az", "bx", "by", "bz", "ra", "rb", "nx", "ny", "nz"},
         0},
        {Kind::Snout,
         "snout",
         {"rb", "rt", "h", "xoff", "yoff", "ox", "oy", "oz", "xx", "xy", "xz", "yx", "yy", "yz",
          "zx", "zy", "zz", "sag"},
         0},
        {Kind::SlopedCylinder,
         "scylinder",
         {"ax", "ay", "az", "bx", "by", "bz", "r", "nx", "ny", "nz"},
         0},
        {Kind::Sphere, "sphere", {"cx", "cy", "cz", "r"}, 0},
        {Kind::Elbow,
         "elbow",
         {"r", "angle", "cx", "cy", "cz", "sx", "sy", "sz", "ax", "ay", "az", "[n]"},
         1000},
        {Kind::Head, "head", {"r", "h", "f", "cx", "cy", "cz", "ax", "ay", "az"}, 0},
        {Kind::RingPlate,
         "ringplate",
         {"ri", "ro", "t", "cx", "cy", "cz", "a0", "a1", "kx", "ky", "kz"},
         0},
        {Kind::Member,
         "member",
         {"ax", "ay", "az", "bx", "by", "bz", "yx", "yy", "yz"},
         0,
         2,
         3,
         kMaxSectionPoints},
        {Kind::Plate, "plate", {"t"}, 0, 3, 3, kMaxSectionPoints},
        {Kind::Transition,
         "transition",
         {"ox", "oy", "oz", "w", "h", "xx", "xy", "xz", "yx", "yy", "yz", "cx", "cy", "cz", "r"},
         0},
        {Kind::Bend,
         "bend",
         {"cx", "cy", "cz", "sx", "sy", "sz", "ax", "ay", "az", "angle", "yx", "yy", "yz"},
         0,
         2,
         3,
         kMaxBendSectionPoints},
    };
    return table;
}

std::string at(const std::string& name, int line) {
    return name + ":" + std::to_string(line) + ": ";
}

// Parses one number; false with the reason in why.
bool toNumber(const std::string& word, double& value, std::string& why) {
    const char* s = word.c_str();
    char* end = nullptr;
    errno = 0;
    value = std::strtod(s, &end);
    if (end == s || *end != '\0') {
        why = "not a number: '" + word + "'";
        return false;
    }
    if (!std::isfinite(value)) {
        why = "not a finite number: '" + word + "'";
        return false;
    }
    if (std::fabs(value) > kMaxCoordinate) {
        why = "out of range (magnitude above 1e6): '" + word + "'";
        return false;
    }
    return true;
}

std::string countText(const Form& f) {
    std::size_t required = 0;
    for (const char* field : f.fields) {
        if (field[0] != '[')
            ++required;
    }
    std::string text = std::to_string(required);
    if (required != f.fields.size())
        text += " or " + std::to_string(f.fields.size());
    return text;
}

bool parseLine(const std::string& text, int line, const std::string& name,
               std::vector<Primitive>& out, std::string& error) {
    std::istringstream words(text);
    std::string keyword;
    if (!(words >> keyword))
        return true;  // blank
    const Form* form = nullptr;
    for (const Form& f : forms()) {
        if (keyword == f.keyword)
            form = &f;
    }
    if (form == nullptr) {
        error = at(name, line) + "unknown primitive '" + keyword + "'";
        return false;
    }
    std::vector<std::string> fields;
    for (std::string w; words >> w;)
        fields.push_back(w);

    const std::size_t all = form->fields.size();
    if (form->pointSize > 0) {
        const std::size_t size = static_cast<std::size_t>(form->pointSize);
        const std::size_t rest = fields.size() < all ? 0 : fields.size() - all;
        const std::size_t points = rest / size;
        if (fields.size() < all || rest % size != 0 ||
            points < static_cast<std::size_t>(form->minPoints) ||
            points > static_cast<std::size_t>(form->maxPoints)) {
            std::string expected = size == 3 ? "x y z" : "x y";
            expected += " of " + std::to_string(form->minPoints) + " to " +
                        std::to_string(form->maxPoints) + " points";
            if (all > 0)
                expected = std::to_string(all) + (all == 1 ? " field, then " : " fields, then ") +
                           expected;
            error = at(name, line) + keyword + ": wrong field count " +
                    std::to_string(fields.size()) + " (" + expected + ")";
            return false;
        }
    } else {
        const bool optionalLast = all > 0 && form->fields[all - 1][0] == '[';
        if (fields.size() != all && !(optionalLast && fields.size() + 1 == all)) {
            error = at(name, line) + keyword + ": wrong field count " +
                    std::to_string(fields.size()) + " (expected " + countText(*form) + ")";
            return false;
        }
    }
    if (out.size() >= static_cast<std::size_t>(kMaxPrimitives)) {
        error = at(name, line) + "too many primitives (at most 10000000)";
        return false;
    }
    Primitive prim{form->kind, line, {}};
    prim.v.reserve(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        static const char* const xyz[3] = {"x", "y", "z"};
        const std::size_t size = static_cast<std::size_t>(form->pointSize);
        const std::string field =
            i < all ? form->fields[i]
                    : std::string(xyz[(i - all) % size]) + std::to_string((i - all) / size);
        double value = 0;
        std::string why;
        bool ok = toNumber(fields[i], value, why);
        const bool integer = field == "n" || field == "[n]";
        if (ok && integer && (value != std::floor(value) || value < 0 || value > form->maxN)) {
            why = "not an integer in 0.." + std::to_string(form->maxN) + ": '" + fields[i] + "'";
            ok = false;
        }
        if (!ok) {
            error = at(name, line) + keyword + ": field " + std::to_string(i + 1) + " (" + field +
                    "): " + why;
            return false;
        }
        prim.v.push_back(value);
    }
    out.push_back(std::move(prim));
    return true;
}

}  // namespace

const char* keywordOf(Kind kind) {
    for (const Form& f : forms()) {
        if (f.kind == kind)
            return f.keyword;
    }
    return "?";
}

bool parseModel(std::istream& in, const std::string& name, std::vector<Primitive>& out,
                std::string& error) {
    std::string text;
    int line = 0;
    while (std::getline(in, text)) {
        if (line == 2147483647) {
            error = at(name, line) + "too many lines";
            return false;
        }
        ++line;
        const std::size_t hash = text.find('#');
        if (hash != std::string::npos)
            text.erase(hash);
        if (!parseLine(text, line, name, out, error))
            return false;
    }
    if (in.bad()) {
        error = at(name, line) + "read error";
        return false;
    }
    return true;
}

bool readModel(const std::string& path, std::vector<Primitive>& out, std::string& error) {
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
        error = path + ": cannot read: is a directory";
        return false;
    }
    std::ifstream in(path);
    if (!in) {
        error = path + ": cannot open: " + std::strerror(errno);
        return false;
    }
    return parseModel(in, path, out, error);
}

}  // namespace vogedraw
