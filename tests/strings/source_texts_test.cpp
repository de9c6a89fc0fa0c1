// Every Chinese text written into the module's sources must have English, so that a text
// added later without a translation fails here rather than on a user's screen.
#include "TestFiles.h"
#include "text_checks.h"
#include "zorhost/services/HostUiService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Literal {
    std::string text; // after escapes, adjacent literals joined
    int line;
};

// Reads the escapes of a literal body. \x and octal escapes are kept as written: nothing
// the module shows is spelt that way, and a wrong guess would only hide a text.
std::string Unescape(const std::string& body) {
    static const std::string from = "ntr\\\"'?", to = "\n\t\r\\\"'?";
    std::string out;
    for (size_t i = 0; i < body.size(); ++i) {
        if (body[i] != '\\' || i + 1 == body.size()) {
            out += body[i];
            continue;
        }
        const size_t k = from.find(body[++i]);
        if (k == std::string::npos)
            out += '\\';
        out += k == std::string::npos ? body[i] : to[k];
    }
    return out;
}

bool IsIdentChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// The string literals of a C++ source, comments and character literals skipped; literals
// that stand next to each other (only blanks between) are joined as the compiler does.
std::vector<Literal> StringLiterals(const std::string& src) {
    std::vector<Literal> result;
    int line = 1;
    size_t counted = 0;                 // newlines are counted up to here
    size_t lastEnd = std::string::npos; // where the previous literal ended
    for (size_t i = 0; i < src.size();) {
        const char c = src[i];
        if (src.compare(i, 2, "//") == 0) {
            i = std::min(src.find('\n', i), src.size());
        } else if (src.compare(i, 2, "/*") == 0) {
            i = std::min(src.find("*/", i + 2), src.size() - 2) + 2;
        } else if (c == '\'' &&
                   !(i > 0 && std::isxdigit(static_cast<unsigned char>(src[i - 1])) &&
                     i + 1 < src.size() && std::isxdigit(static_cast<unsigned char>(src[i + 1])))) {
            // A character literal (a digit separator such as 1'000 is not one).
            for (++i; i < src.size() && src[i] != '\''; ++i)
                if (src[i] == '\\')
                    ++i;
            ++i;
        } else if (c == '"') {
            line += int(std::count(src.begin() + long(counted), src.begin() + long(i), '\n'));
            counted = i;
            std::string text;
            // R"d(...)d", also behind an encoding prefix (u8R, LR ...).
            const bool raw = i > 0 && src[i - 1] == 'R' &&
                             (i < 2 || !IsIdentChar(src[i - 2]) || std::strchr("8uUL", src[i - 2]));
            const size_t literalStart = raw ? i - 1 : i;
            if (raw) {
                const size_t open = src.find('(', i);
                const std::string close = ")" + src.substr(i + 1, open - i - 1) + "\"";
                const size_t stop = std::min(src.find(close, open), src.size());
                text = src.substr(open + 1, stop - open - 1);
                i = stop + close.size();
            } else {
                std::string body;
                for (++i; i < src.size() && src[i] != '"' && src[i] != '\n'; ++i) {
                    if (src[i] == '\\' && i + 1 < src.size())
                        body += src[i++];
                    body += src[i];
                }
                ++i;
                text = Unescape(body);
            }
            if (lastEnd != std::string::npos &&
                src.find_first_not_of(" \t\r\n\v\f", lastEnd) >= literalStart)
                result.back().text += text;
            else
                result.push_back({text, line});
            lastEnd = i;
        } else {
            ++i;
        }
    }
    return result;
}

// Known as a whole, or (a button's caption with a second line) every Chinese line known.
bool HasEnglish(const zorhost::CHostUiService& ui, const std::string& text) {
    CString english;
    if (ui.FindEnglish(text.c_str(), english))
        return true;
    if (text.find('\n') == std::string::npos)
        return false;
    std::istringstream lines(text);
    std::string part;
    while (std::getline(lines, part))
        if (HasChineseText(part) && !ui.FindEnglish(part.c_str(), english))
            return false;
    return true;
}

TEST(SourceLiteralScanner, FindsJoinsAndSkipsWhatTheCompilerDoes) {
    const std::string src = "// \"注释\" is no text\n"
                            "const char* a = \"第一\" \"段\";\n"
                            "/* \"也不是\"\n */ char c = '\"'; int n = 1'000;\n"
                            "f(\"带\\\"引号\\\"\\n换行\");\n"
                            "g(R\"x(原\"样)x\", \"乙\");\n";
    const std::vector<Literal> found = StringLiterals(src);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found[0].text, "第一段");
    EXPECT_EQ(found[0].line, 2);
    EXPECT_EQ(found[1].text, "带\"引号\"\n换行");
    EXPECT_EQ(found[1].line, 5);
    EXPECT_EQ(found[2].text, "原\"样");
    EXPECT_EQ(found[3].text, "乙");
    EXPECT_EQ(found[3].line, 6);
}

TEST(SourceTexts, EveryChineseLiteralUnderSrcHasEnglish) {
    namespace fs = std::filesystem;
    const fs::path root = fs::path(PARMIRA_SOURCE_DIR) / "src";
    ASSERT_TRUE(fs::is_directory(root));
    zorhost::CHostUiService ui;
    std::string missing;
    int chineseTexts = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string ext = entry.path().extension().string();
        if (!entry.is_regular_file() || (ext != ".cpp" && ext != ".h"))
            continue;
        for (const Literal& literal : StringLiterals(Slurp(entry.path().string()))) {
            if (!HasChineseText(literal.text))
                continue;
            ++chineseTexts;
            if (!HasEnglish(ui, literal.text))
                missing += "\n  " + fs::relative(entry.path(), root).string() + ":" +
                           std::to_string(literal.line) + " \"" + literal.text + "\"";
        }
    }
    EXPECT_GT(chineseTexts, 0); // the scan must see the module's texts at all
    EXPECT_TRUE(missing.empty()) << "texts without English (add them to host/translations/en.tsv):"
                                 << missing;
}

} // namespace
