#include "zorhost/device/JsonShape.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <vector>

namespace zorhost::device {

namespace {

// The text of the string literal starting at `at` (its opening quote), escapes resolved so
// that "A" and "\u0041" count as the same key. `end` is set behind the closing quote.
std::string Literal(std::string_view json, std::size_t at, std::size_t& end) {
    std::string out;
    std::size_t i = at + 1;
    while (i < json.size() && json[i] != '"') {
        if (json[i] != '\\' || i + 1 >= json.size()) {
            out += json[i++];
            continue;
        }
        const char e = json[i + 1];
        i += 2;
        switch (e) {
        case 'n':
            out += '\n';
            break;
        case 't':
            out += '\t';
            break;
        case 'r':
            out += '\r';
            break;
        case 'b':
            out += '\b';
            break;
        case 'f':
            out += '\f';
            break;
        case 'u': {
            std::uint32_t code = 0;
            for (int k = 0; k < 4 && i < json.size(); ++k, ++i) {
                const char h = json[i];
                code = code * 16 + std::uint32_t(h <= '9' ? h - '0' : (h | 0x20) - 'a' + 10);
            }
            if (code < 0x80) {
                out += char(code);
            } else if (code < 0x800) {
                out += char(0xC0 | code >> 6);
                out += char(0x80 | (code & 0x3F));
            } else {
                out += char(0xE0 | code >> 12);
                out += char(0x80 | (code >> 6 & 0x3F));
                out += char(0x80 | (code & 0x3F));
            }
            break;
        }
        default:
            out += e;
            break;
        }
    }
    end = i + 1;
    return out;
}

struct Level {
    bool object = false;
    bool expectKey = false;
    std::set<std::string> keys;
};

// Walks the structure of `json` up to `limit`; stops at the first fault of the kinds asked.
bool Scan(std::string_view json, std::size_t limit, bool duplicates, bool commas,
          JsonShapeFault& fault) {
    std::vector<Level> levels;
    char last = 0; // the last structural character or '"' / 'v' for a value
    std::size_t lastComma = 0;
    limit = std::min(limit, json.size());
    for (std::size_t i = 0; i < limit;) {
        const char c = json[i];
        switch (c) {
        case ' ':
        case '\t':
        case '\n':
        case '\r':
            ++i;
            continue;
        case '"': {
            std::size_t end = 0;
            std::string text = Literal(json, i, end);
            if (!levels.empty() && levels.back().object && levels.back().expectKey) {
                levels.back().expectKey = false;
                if (duplicates && !levels.back().keys.insert(text).second) {
                    fault = {i, "duplicate key \"" + text + "\" in one object"};
                    return true;
                }
            }
            last = '"';
            i = end;
            continue;
        }
        case '{':
        case '[':
            if (levels.size() > 10000)
                return false; // deeper than any parser takes; it reports that itself
            levels.push_back({c == '{', c == '{', {}});
            break;
        case '}':
        case ']':
            if (commas && last == ',') {
                fault = {lastComma, std::string("comma right before '") + c + "'"};
                return true;
            }
            if (!levels.empty())
                levels.pop_back();
            break;
        case ',':
            if (commas && (last == ',' || last == '{' || last == '[' || last == ':')) {
                fault = {i, last == ',' ? "two commas in a row" : "comma with no value before it"};
                return true;
            }
            if (!levels.empty() && levels.back().object)
                levels.back().expectKey = true;
            lastComma = i;
            break;
        default:
            break;
        }
        last = c == ':'                                                     ? ':'
               : (c == ',' || c == '{' || c == '[' || c == '}' || c == ']') ? c
                                                                            : 'v';
        ++i;
    }
    return false;
}

} // namespace

bool FindDuplicateKey(std::string_view json, JsonShapeFault& fault) {
    return Scan(json, json.size(), true, false, fault);
}

bool FindStrayComma(std::string_view json, std::size_t limit, JsonShapeFault& fault) {
    return Scan(json, limit, false, true, fault);
}

} // namespace zorhost::device
