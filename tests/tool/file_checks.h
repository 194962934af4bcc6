// Small readers of the drawings vogedraw writes, for its tests: a DXF read back as group code /
// value pairs with its LINE entities per layer, and an SVG checked for balanced tags.
#ifndef VOGEDRAW_TESTS_FILE_CHECKS_H
#define VOGEDRAW_TESTS_FILE_CHECKS_H

#include <map>
#include <string>
#include <vector>

namespace vgtest {

struct DxfLine {
    double x0, y0, x1, y1;
};

/// A DXF as read back.
struct Dxf {
    std::vector<std::string> sections;                  ///< names, in order
    std::map<std::string, std::string> layerLinetype;   ///< LAYER table: name -> line type
    std::vector<std::string> linetypes;                 ///< LTYPE table names
    std::map<std::string, std::vector<DxfLine>> lines;  ///< LINE entities by layer
};

/// Reads text as a DXF: pairs of lines (an integer group code, a value), sections closed by
/// ENDSEC, an EOF at the end, every LINE with a layer and four finite coordinates. False with
/// the reason in why.
bool readDxf(const std::string& text, Dxf& out, std::string& why);

/// Checks text as SVG: an svg root element, every tag closed in order, attribute quotes
/// balanced. Counts the path elements into paths. False with the reason in why.
bool checkSvg(const std::string& text, int& paths, std::string& why);

/// The whole file at path; false if it cannot be read.
bool slurp(const std::string& path, std::string& text);

}  // namespace vgtest

#endif  // VOGEDRAW_TESTS_FILE_CHECKS_H
