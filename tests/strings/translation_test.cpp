// The host's text service: the module's string table as the host reads it, the English
// the host holds for it, and the translation of texts, menus and windows in both languages
// and back again.
#include "module/ModuleResources.h"
#include "text_checks.h"
#include "zorhost/services/HostUiService.h"

#include <afx/afxcmn.h>
#include <afx/afxqt.h>
#include <afx/afxres.h>
#include <afx/afxwin.h>

#include <QFont>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
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

CString Translated(CHostUiService& ui, const char* text) {
    CString out = "left over";
    ui.TranslateText(out, text);
    return out;
}

TEST(TranslateText, ChineseAsWrittenEnglishWhenKnownElseUnchanged) {
    CHostUiService ui;
    EXPECT_EQ(ui.GetLanguage(), UiLanguage::Chinese);
    EXPECT_EQ(Translated(ui, "上传并保存"), "上传并保存");
    ui.SetLanguage(UiLanguage::English);
    EXPECT_EQ(Translated(ui, "上传并保存"), "Upload and save");
    EXPECT_EQ(Translated(ui, "模块'%s'不在线,是否继续执行保存操作？"),
              "Module '%s' is offline. Save anyway?");
    EXPECT_EQ(Translated(ui, "没有译文的字"), "没有译文的字");
    EXPECT_EQ(Translated(ui, ""), "");
    // A caption with a second line: known as a whole, or line by line when composed.
    EXPECT_EQ(Translated(ui, "写入全部\n(除H00和H01組)"), "Write all\n(except H00 and H01)");
    EXPECT_EQ(Translated(ui, "比较\r\n没有译文"), "Compare\r\n没有译文");
    // A tree label, name and description, known in parts.
    EXPECT_EQ(Translated(ui, "其他[B连接器]"), "Other[B connector]");
    EXPECT_EQ(Translated(ui, "H02[参数组]"), "H02[Parameter groups]");
    EXPECT_EQ(Translated(ui, "H02[没有译文]"), "H02[没有译文]");
    // Near misses are not translations.
    EXPECT_EQ(Translated(ui, "上传并保存 "), "上传并保存 ");
}

TEST(TranslateText, AddedTranslationsWorkBothWays) {
    CHostUiService ui;
    ui.AddTranslation("电机额定转速", "Rated motor speed");
    ui.SetLanguage(UiLanguage::English);
    EXPECT_EQ(Translated(ui, "电机额定转速"), "Rated motor speed");
    EXPECT_EQ(ui.SourceOf("Rated motor speed"), "电机额定转速");
    // A new English replaces the old one, which no longer leads back.
    ui.AddTranslation("电机额定转速", "Motor rated speed");
    EXPECT_EQ(Translated(ui, "电机额定转速"), "Motor rated speed");
    EXPECT_EQ(ui.SourceOf("Rated motor speed"), "Rated motor speed");
    EXPECT_EQ(ui.SourceOf("Motor rated speed"), "电机额定转速");
    // A second text with the same English doesn't take over the way back.
    ui.AddTranslation("额定转速", "Motor rated speed");
    EXPECT_EQ(ui.SourceOf("Motor rated speed"), "电机额定转速");
    ui.AddTranslation("", "nothing");
    ui.AddTranslation("空", "");
    EXPECT_EQ(Translated(ui, "空"), "空");
}

TEST(TranslateMenu, EntriesAndPopupsChangeIdsAndStatesStay) {
    CHostUiService ui;
    CMenu menu;
    menu.CreatePopupMenu();
    menu.AppendMenu(MF_STRING | MF_CHECKED, 2107, "导出");
    menu.AppendMenu(MF_SEPARATOR);
    CMenu sub;
    sub.CreatePopupMenu();
    sub.AppendMenu(MF_STRING | MF_GRAYED, 32845, "新建子组");
    sub.AppendMenu(MF_STRING, 4001, "H01 没有译文");
    menu.AppendMenu(MF_POPUP, reinterpret_cast<UINT_PTR>(sub.Detach()), "添加到自定义参数组");

    auto text = [](CMenu* m, int pos) {
        CString t;
        m->GetMenuString(UINT(pos), t, MF_BYPOSITION);
        return t;
    };
    ui.SetLanguage(UiLanguage::English);
    for (int round = 0; round < 2; ++round) { // twice: translating again changes nothing
        ui.TranslateMenu(menu.GetSafeHmenu());
        EXPECT_EQ(text(&menu, 0), "Export");
        EXPECT_EQ(menu.GetMenuItemID(0), 2107u);
        EXPECT_TRUE(menu.GetMenuState(0, MF_BYPOSITION) & MF_CHECKED);
        EXPECT_EQ(menu.GetMenuItemID(1), 0u); // still a separator
        EXPECT_EQ(text(&menu, 2), "Add to custom group");
        CMenu* popup = menu.GetSubMenu(2);
        ASSERT_NE(popup, nullptr);
        EXPECT_EQ(text(popup, 0), "New subgroup");
        EXPECT_EQ(popup->GetMenuItemID(0), 32845u);
        EXPECT_TRUE(popup->GetMenuState(0, MF_BYPOSITION) & MF_GRAYED);
        EXPECT_EQ(text(popup, 1), "H01 没有译文");
    }
    ui.SetLanguage(UiLanguage::Chinese);
    ui.TranslateMenu(menu.GetSafeHmenu());
    EXPECT_EQ(text(&menu, 0), "导出");
    EXPECT_EQ(text(menu.GetSubMenu(2), 0), "新建子组");
    ui.TranslateMenu(nullptr);
}

enum : UINT {
    IDD_TRANSLATED = 9700,
    IDC_NAME_LABEL = 9701,
    IDC_HIDE_READONLY = 9702,
    IDC_CONDITION_BOX = 9703,
    IDC_VALUE_EDIT = 9704,
    IDC_LEVEL_BOX = 9705,
    IDC_UNKNOWN_LABEL = 9706,
    IDC_TWO_LINES = 9707,
    IDC_LATE_BUTTON = 9708,
    IDC_VAR_LIST = 9709,
};

class WindowTranslationTest : public ::testing::Test {
protected:
    void SetUp() override {
        resources = AfxCreateResourceHandle("translated-dialog");
        AfxRegisterDialog(
            resources,
            {IDD_TRANSLATED,
             "参数比较",
             420,
             300,
             {{IDC_NAME_LABEL, DlgCtl::Static, "参数名称", 10, 10, 120, 20},
              {IDC_HIDE_READONLY, DlgCtl::Check, "隐藏只读参数", 10, 40, 160, 20},
              {IDC_CONDITION_BOX, DlgCtl::GroupBox, "比较条件", 10, 70, 200, 80},
              {IDC_VALUE_EDIT, DlgCtl::Edit, "当前值", 220, 10, 120, 22},
              {IDC_LEVEL_BOX, DlgCtl::ComboDropList, "", 220, 40, 120, 24},
              {IDC_UNKNOWN_LABEL, DlgCtl::Static, "没有译文", 220, 70, 120, 20},
              {IDC_TWO_LINES, DlgCtl::Button, "上传并保存\n(所有勾选项)", 10, 160, 160, 44},
              {IDC_VAR_LIST, DlgCtl::List, "", 220, 100, 190, 140, LVS_REPORT},
              {IDOK, DlgCtl::Button, "确定", 240, 250, 80, 26, BS_DEFPUSHBUTTON}}});
        ASSERT_TRUE(dialog.Create(IDD_TRANSLATED));
        auto* level = static_cast<CComboBox*>(dialog.GetDlgItem(IDC_LEVEL_BOX));
        ASSERT_NE(level, nullptr);
        level->AddString("厂家参数");
        level->SetCurSel(0);
        list = static_cast<CListCtrl*>(dialog.GetDlgItem(IDC_VAR_LIST));
        ASSERT_NE(list, nullptr);
        list->InsertColumn(0, "参数", LVCFMT_LEFT, 60);
        list->InsertColumn(1, "当前值", LVCFMT_LEFT, 80);
        list->InsertColumn(2, "Guid", LVCFMT_LEFT, 40);
        list->InsertItem(0, "出厂值");
    }
    void TearDown() override {
        dialog.DestroyWindow();
        AfxFreeResourceHandle(resources);
    }

    CString Text(UINT id) { return dialog.GetDlgItem(int(id))->GetWindowTextString(); }

    // Captions follow the language; edits and lists hold values, not captions, whatever
    // they read like.
    void ExpectLanguage(bool english) {
        struct Caption {
            UINT id; // 0: the dialog's own title
            const char* zh;
            const char* en;
        };
        const Caption captions[] = {
            {0, "参数比较", "Parameter compare"},
            {IDC_NAME_LABEL, "参数名称", "Parameter name"},
            {IDC_HIDE_READONLY, "隐藏只读参数", "Hide read-only parameters"},
            {IDC_CONDITION_BOX, "比较条件", "Compare by"},
            {IDC_TWO_LINES, "上传并保存\n(所有勾选项)", "Upload and save\n(all checked)"},
            {IDOK, "确定", "OK"},
            {IDC_VALUE_EDIT, "当前值", "当前值"},
            {IDC_LEVEL_BOX, "厂家参数", "厂家参数"},
            {IDC_UNKNOWN_LABEL, "没有译文", "没有译文"},
        };
        for (const Caption& c : captions)
            EXPECT_EQ(c.id == 0 ? dialog.GetWindowTextString() : Text(c.id), english ? c.en : c.zh);
        EXPECT_EQ(list->GetColumnText(0), english ? "Parameter" : "参数");
        EXPECT_EQ(list->GetColumnText(1), english ? "Current value" : "当前值");
        EXPECT_EQ(list->GetColumnText(2), "Guid");
        EXPECT_EQ(list->GetItemText(0, 0), "出厂值");
    }

    HINSTANCE resources = nullptr;
    CDialog dialog;
    CListCtrl* list = nullptr;
    CHostUiService ui;
    const std::unique_ptr<IHostWindowTranslator> translator{ui.CreateWindowTranslator()};
};

TEST_F(WindowTranslationTest, TranslatorSwitchesBackAndForthWithoutLoss) {
    ASSERT_NE(translator, nullptr);
    translator->Attach(dialog.GetSafeHwnd());
    ExpectLanguage(false); // attaching only remembers
    for (int round = 0; round < 2; ++round) {
        ui.SetLanguage(UiLanguage::English);
        translator->Retranslate(0);
        ExpectLanguage(true);
        translator->Retranslate(0);
        ExpectLanguage(true);
        ui.SetLanguage(UiLanguage::Chinese);
        translator->Retranslate(0);
        ExpectLanguage(false);
    }
}

TEST_F(WindowTranslationTest, TextsSetByCodeAndLateChildrenFollowTheLanguage) {
    translator->Attach(dialog.GetSafeHwnd());
    ui.SetLanguage(UiLanguage::English);
    translator->Retranslate(0);

    // Code writes a Chinese text while English is on: it is the text as written now.
    dialog.SetDlgItemText(IDC_NAME_LABEL, "描述");
    // Code writes a text it got already translated (GetString in English).
    dialog.SetDlgItemText(IDC_CONDITION_BOX, "Current value");
    // A control made after Attach.
    CButton late;
    ASSERT_TRUE(late.Create("取消", WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON,
                            CRect(330, 250, 410, 276), &dialog, IDC_LATE_BUTTON));
    translator->Retranslate(0);
    EXPECT_EQ(Text(IDC_NAME_LABEL), "Description");
    EXPECT_EQ(Text(IDC_CONDITION_BOX), "Current value");
    EXPECT_EQ(Text(IDC_LATE_BUTTON), "Cancel");

    ui.SetLanguage(UiLanguage::Chinese);
    translator->Retranslate(0);
    EXPECT_EQ(Text(IDC_NAME_LABEL), "描述");
    EXPECT_EQ(Text(IDC_CONDITION_BOX), "当前值");
    EXPECT_EQ(Text(IDC_LATE_BUTTON), "取消");
    EXPECT_EQ(dialog.GetWindowTextString(), "参数比较");
}

TEST_F(WindowTranslationTest, ServiceRetranslatesAWindowWithoutATranslator) {
    ui.SetLanguage(UiLanguage::English);
    ui.RetranslateWindow(dialog.GetSafeHwnd());
    ExpectLanguage(true);
    // A second translator over the same window agrees with what the first walk kept.
    translator->Attach(dialog.GetSafeHwnd());
    ui.SetLanguage(UiLanguage::Chinese);
    translator->Retranslate(0);
    ExpectLanguage(false);
    ui.RetranslateWindow(nullptr);
}

TEST_F(WindowTranslationTest, TranslatorOutlivingItsWindowDoesNothing) {
    translator->Retranslate(0); // not attached yet
    translator->Attach(dialog.GetSafeHwnd());
    dialog.DestroyWindow();
    // A new window of the same dialog, which may get the old one's handle back, is not the
    // translator's to touch.
    ASSERT_TRUE(dialog.Create(IDD_TRANSLATED));
    ui.SetLanguage(UiLanguage::English);
    translator->Retranslate(0);
    EXPECT_EQ(dialog.GetWindowTextString(), "参数比较");
    EXPECT_EQ(Text(IDC_NAME_LABEL), "参数名称");
}

TEST_F(WindowTranslationTest, SkinScalesFontsOnceFromTheirFirstSize) {
    QWidget* label = AfxWidgetFromHandle(dialog.GetDlgItem(IDC_NAME_LABEL)->GetSafeHwnd());
    ASSERT_NE(label, nullptr);
    const double base = label->font().pointSizeF();
    ASSERT_GT(base, 0.0);
    ui.ApplySkin(dialog.GetSafeHwnd(), 0, 0);
    EXPECT_DOUBLE_EQ(label->font().pointSizeF(), base); // scale 1: nothing changes
    ui.SetUiScale(1.5);
    ui.ApplySkin(dialog.GetSafeHwnd(), 0, 0);
    ui.ApplySkin(dialog.GetSafeHwnd(), 0, 0);
    EXPECT_DOUBLE_EQ(label->font().pointSizeF(), base * 1.5);
    ui.SetUiScale(1.0);
    ui.ApplySkin(dialog.GetSafeHwnd(), 0, 0);
    EXPECT_DOUBLE_EQ(label->font().pointSizeF(), base);
    ui.SetUiScale(0.0); // refused
    EXPECT_DOUBLE_EQ(ui.GetUiScale(), 1.0);
}

} // namespace
