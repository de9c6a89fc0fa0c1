// The module's string table as the host reads it, and the English the host holds for it.
#include "module/ModuleResources.h"
#include "text_checks.h"
#include "zorhost/services/HostUiService.h"

#include <afx/afxres.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>

using zorhost::CHostUiService;
using zorhost::UiLanguage;

namespace {

class StringTableTest : public ::testing::Test {
protected:
    void SetUp() override {
        module = AfxCreateResourceHandle("strings-under-test");
        RegisterModuleResources(module);
    }
    void TearDown() override { AfxFreeResourceHandle(module); }

    CString Get(UINT id, BOOL* found = nullptr) {
        CString text = "left over";
        const BOOL ok = ui.GetString(text, module, id, 0);
        if (found != nullptr)
            *found = ok;
        return text;
    }

    HINSTANCE module = nullptr;
    CHostUiService ui;
};

TEST_F(StringTableTest, SharedTextsAndConnectorNamesComeBackUnderTheirOwnIds) {
    // Several ids share one text; each must still be there under its own number.
    for (UINT id : {2009u, 2015u, 2142u})
        EXPECT_EQ(Get(id), "当前值") << id;
    for (const auto& [id, twin] : {std::pair{145u, 153u}, std::pair{181u, 2027u}}) {
        EXPECT_FALSE(Get(id).IsEmpty()) << id;
        EXPECT_EQ(Get(id), Get(twin)) << id;
    }
    // The connector names are matched as parts of enumeration texts; the order of the
    // longer and shorter names matters to that match, so each must be exact.
    EXPECT_EQ(Get(177), "B连接器");
    EXPECT_EQ(Get(149), "BKF连接器");
    EXPECT_EQ(Get(196), "KF连接器");
    EXPECT_EQ(Get(178), "K连接器");
    EXPECT_EQ(Get(179), "F连接器");
}

TEST_F(StringTableTest, EmptyEntriesAreFoundAndEmptyUnknownIdsAreNot) {
    for (UINT id : {170u, 2037u}) {
        BOOL found = FALSE;
        EXPECT_EQ(Get(id, &found), "") << id;
        EXPECT_TRUE(found) << id;
    }
    for (UINT id : {151u, 2039u, 0u, 65535u}) {
        BOOL found = TRUE;
        EXPECT_EQ(Get(id, &found), "") << id;
        EXPECT_FALSE(found) << id;
    }
    CString text = "left over";
    EXPECT_FALSE(ui.GetString(text, nullptr, 1952, 0));
    EXPECT_EQ(text, "");
    // Another module's table is another table.
    HINSTANCE other = AfxCreateResourceHandle("other-module");
    AfxRegisterString(other, 1952, "别的");
    EXPECT_TRUE(ui.GetString(text, other, 1952, 0));
    EXPECT_EQ(text, "别的");
    EXPECT_FALSE(ui.GetString(text, other, 175, 0));
    AfxFreeResourceHandle(other);
}

TEST_F(StringTableTest, GetStringFollowsTheLanguage) {
    ui.SetLanguage(UiLanguage::English);
    EXPECT_EQ(Get(175), "Saved to '%s'.");
    EXPECT_EQ(Get(2013), "Parameter");
    EXPECT_EQ(Get(2040), "ZorDriveBench");
    BOOL found = FALSE;
    EXPECT_EQ(Get(2037, &found), "");
    EXPECT_TRUE(found);
    ui.SetLanguage(UiLanguage::Chinese);
    EXPECT_EQ(Get(175), "保存到'%s'成功。");
}

TEST(StringTableData, IdsAreUniqueAndAscending) {
    std::size_t count = 0;
    const ModuleStringEntry* table = ModuleStringTable(&count);
    ASSERT_GT(count, 0u);
    for (std::size_t i = 1; i < count; ++i)
        EXPECT_LT(table[i - 1].id, table[i].id) << "entry " << i;
}

TEST(BuiltInEnglish, KeepsConversionsAndLineBreaksAndIsNotChinese) {
    std::set<std::string> sources;
    std::map<std::string, std::string> englishSeen;
    for (const zorhost::TranslationPair& pair : zorhost::BuiltInEnglishTexts()) {
        const std::string source = pair.source;
        const std::string english = pair.english;
        EXPECT_TRUE(sources.insert(source).second) << "twice: " << source;
        EXPECT_FALSE(english.empty()) << source;
        EXPECT_FALSE(HasChineseText(english)) << source;
        EXPECT_EQ(PrintfConversions(source), PrintfConversions(english)) << source;
        EXPECT_EQ(std::count(source.begin(), source.end(), '\n'),
                  std::count(english.begin(), english.end(), '\n'))
            << source;
        // A window switched back to Chinese finds its text through the English; two texts
        // with one English would come back as the same one.
        auto [it, fresh] = englishSeen.emplace(english, source);
        EXPECT_TRUE(fresh) << "\"" << english << "\" stands for both " << it->second << " and "
                           << source;
    }
}

// The compiled table is generated from en.tsv; a stale one would drop new translations.
TEST(BuiltInEnglish, MatchesTheTranslationFile) {
    std::ifstream file(PARMIRA_SOURCE_DIR "/host/translations/en.tsv");
    ASSERT_TRUE(file.good());
    auto unescape = [](const std::string& field) {
        std::string out;
        for (size_t i = 0; i < field.size(); ++i) {
            if (field[i] == '\\' && i + 1 < field.size()) {
                const char next = field[++i];
                out += next == 'n' ? '\n' : next == 't' ? '\t' : next;
            } else {
                out += field[i];
            }
        }
        return out;
    };
    std::map<std::string, std::string> fromFile;
    std::string line;
    while (std::getline(file, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        const size_t tab = line.find('\t');
        ASSERT_NE(tab, std::string::npos) << line;
        fromFile[unescape(line.substr(0, tab))] = unescape(line.substr(tab + 1));
    }
    std::map<std::string, std::string> compiled;
    for (const zorhost::TranslationPair& pair : zorhost::BuiltInEnglishTexts())
        compiled[pair.source] = pair.english;
    EXPECT_EQ(compiled, fromFile) << "run host/translations/gen_en_table.py";
}

} // namespace
