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

std::string checkDxf(std::istream& in, long minVisible) {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (std::string code, value; std::getline(in, code) && std::getline(in, value);)
        pairs.emplace_back(code.substr(code.find_first_not_of(' ')), value);
    if (pairs.empty() || pairs.back() != std::make_pair(std::string("0"), std::string("EOF")))
        return "no EOF at the end";
    std::string sections, section;
    std::map<std::string, std::string> layers;  // name -> line type
    std::map<std::string, long> lines;          // layer -> LINE count
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        std::map<std::string, std::string> rec;  // the record's groups up to the next code 0
        for (std::size_t k = i + 1; k < pairs.size() && pairs[k].first != "0"; ++k)
            rec[pairs[k].first] = pairs[k].second;
        const std::string what = pairs[i].first == "0" ? pairs[i].second : "";
        section = what == "SECTION" ? rec["2"] : what == "ENDSEC" ? "" : section;
        sections += what == "SECTION" ? section + " " : "";
        if (what == "LAYER" && section == "TABLES")
            layers[rec["2"]] = rec["6"];
        double v = 0;
        if (what == "LINE" &&
            (section != "ENTITIES" || !number(rec["10"], v) || !number(rec["20"], v) ||
             !number(rec["11"], v) || !number(rec["21"], v)))
            return "LINE outside ENTITIES or without finite coordinates";
        lines[rec["8"]] += what == "LINE";
    }
    if (sections != "HEADER TABLES BLOCKS ENTITIES " || !section.empty())
        return "sections: " + sections;
    if (layers["VISIBLE"] != "CONTINUOUS" || layers["HIDDEN"] != "DASHED")
        return "layers or line types wrong";
    long all = 0;
    for (const auto& [layer, count] : lines)
        all += count;
    if (lines["VISIBLE"] < minVisible || all != lines["VISIBLE"] + lines["HIDDEN"])
        return "LINE counts wrong: visible " + std::to_string(lines["VISIBLE"]);
    std::printf("DXF with %ld visible and %ld hidden lines\n", lines["VISIBLE"], lines["HIDDEN"]);
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
        const std::string name = tag.substr(0, tag.find_first_of(" \n/", 1));
        if (tag.empty() || tag[0] == '?')
            continue;
        if (tag[0] == '/' && (open.empty() || open.back() != name.substr(1)))
            return tag + " does not match";
        roots += open.empty() && tag[0] != '/';
        paths += name == "path";
        if (tag[0] == '/')
            open.pop_back();
        else if (tag.back() != '/')
            open.push_back(name);
    }
    if (roots != 1 || !open.empty() || paths == 0 || text.find("<svg") == std::string::npos)
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
    std::istringstream again(text.str());
    const bool svg = path.size() > 4 && path.compare(path.size() - 4, 4, ".svg") == 0;
    const std::string why = !in   ? "cannot read"
                            : svg ? checkSvg(text.str())
                                  : checkDxf(again, std::atol(argv[2]));
    if (!why.empty())
        std::printf("%s: %s\n", path.c_str(), why.c_str());
    return why.empty() ? 0 : 1;
}
