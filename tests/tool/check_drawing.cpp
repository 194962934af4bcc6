// check_drawing FILE MIN_VISIBLE: reads back a drawing vogedraw wrote. A .dxf is read as group
// code / value pairs: it must have the HEADER, TABLES, BLOCKS and ENTITIES sections, end with
// EOF, give layer VISIBLE the CONTINUOUS and layer HIDDEN the DASHED line type, and hold at
// least MIN_VISIBLE LINE entities on VISIBLE, each with four finite coordinates, none on other
// layers. An .svg must be one svg element with every tag closed in order and paths inside.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

bool number(const std::string& s, double& v) {
    char* end = nullptr;
    v = std::strtod(s.c_str(), &end);
    return end != s.c_str() && *end == '\0' && std::isfinite(v);
}

std::string checkDxf(const std::string& text, long minVisible) {
    std::istringstream in(text);
    std::vector<std::pair<int, std::string>> pairs;
    for (std::string code, value; std::getline(in, code) && std::getline(in, value);) {
        double c = 0;
        if (!number(code, c) || c != std::floor(c))
            return "bad group code '" + code + "'";
        pairs.emplace_back(static_cast<int>(c), value);
    }
    if (pairs.empty() || pairs.back() != std::make_pair(0, std::string("EOF")))
        return "no EOF at the end";
    std::string sections, section, table;
    std::map<std::string, std::string> layers;  // name -> line type
    std::map<std::string, long> lines;          // layer -> LINE count
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i].first != 0)
            continue;
        std::map<int, std::string> rec;  // the record's groups up to the next code 0
        for (std::size_t k = i + 1; k < pairs.size() && pairs[k].first != 0; ++k)
            rec[pairs[k].first] = pairs[k].second;
        const std::string& what = pairs[i].second;
        if (what == "SECTION") {
            section = rec[2];
            sections += section + " ";
        } else if (what == "ENDSEC") {
            section.clear();
        } else if (what == "TABLE") {
            table = rec[2];
        } else if (what == "LAYER" && table == "LAYER") {
            layers[rec[2]] = rec[6];
        } else if (what == "LINE") {
            double v = 0;
            for (int code : {10, 20, 11, 21}) {
                if (!number(rec[code], v))
                    return "LINE without a finite coordinate " + std::to_string(code);
            }
            if (section != "ENTITIES")
                return "LINE outside ENTITIES";
            ++lines[rec[8]];
        }
    }
    if (sections != "HEADER TABLES BLOCKS ENTITIES " || !section.empty())
        return "sections: " + sections;
    if (layers["VISIBLE"] != "CONTINUOUS" || layers["HIDDEN"] != "DASHED")
        return "layers or line types wrong";
    const long visible = lines["VISIBLE"], hidden = lines["HIDDEN"];
    if (visible < minVisible || static_cast<long>(lines.size()) > 2)
        return "LINE counts wrong: visible " + std::to_string(visible);
    std::printf("DXF with %ld visible and %ld hidden lines\n", visible, hidden);
    return "";
}

std::string checkSvg(const std::string& text) {
    std::vector<std::string> open;
    int roots = 0, paths = 0;
    for (std::size_t i = text.find('<'); i != std::string::npos; i = text.find('<', i + 1)) {
        const std::size_t end = text.find('>', i);
        if (end == std::string::npos)
            return "unclosed tag";
        const std::string tag = text.substr(i + 1, end - i - 1);
        if (tag.empty() || tag[0] == '?')
            continue;
        if (tag[0] == '/') {
            if (open.empty() || open.back() != tag.substr(1))
                return "</" + tag.substr(1) + "> does not match";
            open.pop_back();
            continue;
        }
        const std::string name = tag.substr(0, tag.find_first_of(" \n/"));
        roots += open.empty();
        paths += name == "path";
        if (open.empty() && name != "svg")
            return "root element " + name;
        if (tag.back() != '/')
            open.push_back(name);
    }
    if (roots != 1 || !open.empty() || paths == 0)
        return "not one svg element with paths";
    std::printf("well-formed SVG with %d paths\n", paths);
    return "";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3)
        return 2;
    const std::string path = argv[1];
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const bool svg = path.size() > 4 && path.compare(path.size() - 4, 4, ".svg") == 0;
    const std::string why = !in   ? "cannot read"
                            : svg ? checkSvg(text.str())
                                  : checkDxf(text.str(), std::atol(argv[2]));
    if (!why.empty()) {
        std::printf("%s: %s\n", path.c_str(), why.c_str());
        return 1;
    }
    return 0;
}
