#include "file_checks.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vgtest {
namespace {

std::string trim(const std::string& s) {
    const std::size_t a = s.find_first_not_of(" \t\r");
    const std::size_t b = s.find_last_not_of(" \t\r");
    return a == std::string::npos ? "" : s.substr(a, b - a + 1);
}

bool number(const std::string& s, double& v) {
    char* end = nullptr;
    v = std::strtod(s.c_str(), &end);
    return end != s.c_str() && *end == '\0' && std::isfinite(v);
}

}  // namespace

bool readDxf(const std::string& text, Dxf& out, std::string& why) {
    std::istringstream in(text);
    std::vector<std::pair<int, std::string>> pairs;
    for (std::string code, value; std::getline(in, code);) {
        if (!std::getline(in, value)) {
            why = "odd number of lines";
            return false;
        }
        double c = 0;
        if (!number(trim(code), c) || c != std::floor(c)) {
            why = "bad group code '" + code + "'";
            return false;
        }
        pairs.emplace_back(static_cast<int>(c), trim(value));
    }
    if (pairs.empty() || pairs.back() != std::make_pair(0, std::string("EOF"))) {
        why = "no EOF at the end";
        return false;
    }
    std::string section, table;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i].first != 0)
            continue;
        const std::string& what = pairs[i].second;
        // The group pairs of this record, up to the next code 0.
        std::map<int, std::vector<std::string>> rec;
        for (std::size_t k = i + 1; k < pairs.size() && pairs[k].first != 0; ++k)
            rec[pairs[k].first].push_back(pairs[k].second);
        auto one = [&](int code) {
            return rec.count(code) != 0 && rec[code].size() == 1 ? rec[code][0] : std::string();
        };
        if (what == "SECTION") {
            if (!section.empty()) {
                why = "SECTION inside " + section;
                return false;
            }
            section = one(2);
            out.sections.push_back(section);
        } else if (what == "ENDSEC") {
            if (section.empty()) {
                why = "ENDSEC outside a section";
                return false;
            }
            section.clear();
        } else if (what == "TABLE") {
            table = one(2);
        } else if (what == "ENDTAB") {
            table.clear();
        } else if (what == "LTYPE" && table == "LTYPE") {
            out.linetypes.push_back(one(2));
        } else if (what == "LAYER" && table == "LAYER") {
            out.layerLinetype[one(2)] = one(6);
        } else if (what == "LINE") {
            DxfLine l{};
            double* v[4] = {&l.x0, &l.y0, &l.x1, &l.y1};
            const int codes[4] = {10, 20, 11, 21};
            for (int k = 0; k < 4; ++k) {
                if (!number(one(codes[k]), *v[k])) {
                    why = "LINE without a finite coordinate " + std::to_string(codes[k]);
                    return false;
                }
            }
            if (section != "ENTITIES" || one(8).empty()) {
                why = "LINE outside ENTITIES or without a layer";
                return false;
            }
            out.lines[one(8)].push_back(l);
        }
    }
    if (!section.empty()) {
        why = "section " + section + " not closed";
        return false;
    }
    return true;
}

bool checkSvg(const std::string& text, int& paths, std::string& why) {
    std::vector<std::string> open;
    paths = 0;
    bool root = false;
    for (std::size_t i = text.find('<'); i != std::string::npos; i = text.find('<', i + 1)) {
        const std::size_t end = text.find('>', i);
        if (end == std::string::npos) {
            why = "unclosed tag";
            return false;
        }
        const std::string tag = text.substr(i + 1, end - i - 1);
        if (tag.empty() || tag[0] == '?' || tag[0] == '!')
            continue;
        std::size_t quotes = 0;
        for (char c : tag)
            quotes += c == '"';
        if (quotes % 2 != 0) {
            why = "unbalanced quotes in <" + tag.substr(0, 40) + ">";
            return false;
        }
        if (tag[0] == '/') {
            if (open.empty() || open.back() != tag.substr(1)) {
                why = "closing </" + tag.substr(1) + "> does not match";
                return false;
            }
            open.pop_back();
            continue;
        }
        const std::string name = tag.substr(0, tag.find_first_of(" \t\n/"));
        if (open.empty()) {
            if (root || name != "svg") {
                why = "root element is not a single svg";
                return false;
            }
            root = true;
        }
        paths += name == "path";
        if (tag.back() != '/')
            open.push_back(name);
    }
    if (!root || !open.empty()) {
        why = root ? "element " + open.back() + " not closed" : "no svg element";
        return false;
    }
    return true;
}

bool slurp(const std::string& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream s;
    s << in.rdbuf();
    text = s.str();
    return true;
}

}  // namespace vgtest
