// check_drawing FILE [MIN_VISIBLE]: reads a drawing vogedraw wrote and checks it. A .dxf must
// have the header, tables, blocks and entities sections, a DASHED line type for layer HIDDEN and at
// least MIN_VISIBLE lines on layer VISIBLE; an .svg must be well formed with a path element.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "file_checks.h"

int main(int argc, char** argv) {
    if (argc < 2)
        return 2;
    const std::string path = argv[1];
    const long minVisible = argc > 2 ? std::atol(argv[2]) : 1;
    std::string text, why;
    if (!vgtest::slurp(path, text)) {
        std::printf("%s: cannot read\n", path.c_str());
        return 1;
    }
    if (path.size() > 4 && path.substr(path.size() - 4) == ".svg") {
        int paths = 0;
        if (!vgtest::checkSvg(text, paths, why) || paths < 1) {
            std::printf("%s: %s\n", path.c_str(), why.empty() ? "no path" : why.c_str());
            return 1;
        }
        std::printf("%s: well-formed SVG, %d paths\n", path.c_str(), paths);
        return 0;
    }
    vgtest::Dxf dxf;
    if (!vgtest::readDxf(text, dxf, why)) {
        std::printf("%s: %s\n", path.c_str(), why.c_str());
        return 1;
    }
    const bool sections = dxf.sections.size() == 4 && dxf.sections[0] == "HEADER" &&
                          dxf.sections[1] == "TABLES" && dxf.sections[2] == "BLOCKS" &&
                          dxf.sections[3] == "ENTITIES";
    const long visible = static_cast<long>(dxf.lines["VISIBLE"].size());
    const long hidden = static_cast<long>(dxf.lines["HIDDEN"].size());
    if (!sections || dxf.layerLinetype["HIDDEN"] != "DASHED" ||
        dxf.layerLinetype["VISIBLE"] != "CONTINUOUS" || visible < minVisible ||
        dxf.lines.size() > 2) {
        std::printf("%s: sections, layers or line counts wrong (visible %ld, hidden %ld)\n",
                    path.c_str(), visible, hidden);
        return 1;
    }
    std::printf("%s: DXF with %ld visible and %ld hidden lines\n", path.c_str(), visible, hidden);
    return 0;
}
