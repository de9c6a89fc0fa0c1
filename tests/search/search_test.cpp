// The commands of the list pages: the search box of both pages (history, the meaning of
// "All", case, the fields of each page, the present language and the access level), their
// context menus, the monitor command, removing rows from a custom group, the column dialog,
// and the compressed export (value words and checksums, and whole files written from the
// live list of the demo servo, read back byte by byte).
#include "TempDir.h"
#include "TestFiles.h"
#include "page_fixture.h"

#include "files/ZxdExport.h"
#include "pages/ConfigListDlg.h"
#include "pages/RowCommands.h"
#include "table/TableResources.h"

#include <zlib.h>

#include <cstring>
#include <filesystem>

namespace pt {
namespace {

class SearchTest : public ServoPageTest {
protected:
    // Types `text` into the page's box and presses Enter, as a user does.
    void Enter(CVarTablePageBase& page, const char* text) {
        CSearcherComboBox* box = page.GetSearcher();
        box->SetWindowText(text);
        box->SetFocus();
        AfxTestPressKey(box, VK_RETURN);
        Pump();
    }
    bool Shows(CVarTablePageBase& page, const char* code) { return RowOf(code, &page) >= 0; }
    static CString Entries(CComboBox& box) {
        CString all;
        for (int i = 0; i < box.GetCount(); ++i) {
            CString t;
            box.GetLBText(i, t);
            all += t + "|";
        }
        return all;
    }
    void SetEnglish(bool english) {
        host.Ui().SetLanguage(english ? zorhost::UiLanguage::English
                                      : zorhost::UiLanguage::Chinese);
        host.Bus().RaiseLanguageChanged();
    }
};

TEST_F(SearchTest, HistoryAndTheMeaningOfAll) {
    ShowGroup("H00");
    const int base = Page().GetShownCount();
    ASSERT_GT(base, 2);
    Enter(Page(), "h00-10");
    EXPECT_EQ(Page().GetShownCount(), 1);
    EXPECT_TRUE(Shows(Page(), "H00-10"));
    // "All" is shown as the fixed first entry, yet a typed "All" is a history text of its
    // own; entered twice it stands once.
    Enter(Page(), "All");
    EXPECT_EQ(Page().GetShownCount(), base);
    Enter(Page(), "All");
    Enter(Page(), "h00-10");
    Enter(Page(), "ALL");
    EXPECT_EQ(Page().GetShownCount(), base);
    EXPECT_EQ(Entries(Page().GetSearchBox()), "All|h00-10|All|ALL|");
    // Enter on an empty box changes nothing.
    Enter(Page(), "h00-10");
    Enter(Page(), "");
    EXPECT_EQ(Page().GetShownCount(), 1);
    // A pick from the drop-down searches without touching the history.
    Page().GetSearchBox().ChooseEntry(0);
    Pump();
    EXPECT_EQ(Page().GetShownCount(), base);
    EXPECT_EQ(Page().GetSearchBox().GetCount(), 4);
    // A new selection shows the group in full and the search runs over it.
    ShowGroup("H03");
    Enter(Page(), "h00-10");
    EXPECT_EQ(Page().GetShownCount(), 0);
}

TEST_F(SearchTest, FieldsOfEachPage) {
    CVarTablePageBase* pages[] = {&Page(), &Page2()};
    for (CVarTablePageBase* page : pages) {
        SCOPED_TRACE(page->IsFirstPage() ? "first page" : "second page");
        ShowGroup("H00", page);
        page->SearchRows("h00-10");
        EXPECT_TRUE(Shows(*page, "H00-10"));
        EXPECT_EQ(page->GetShownCount(), 1);
        // An option name of the DI functions is a field of the first page only.
        ShowGroup("H03", page);
        page->SearchRows("伺服使能");
        EXPECT_EQ(Shows(*page, "H03-02"), page->IsFirstPage() != FALSE);
        // "kg·cm²" is the unit of H00-10 only; the address 10 is held by more.
        ShowGroup("H00", page);
        page->SearchRows("KG·CM²");
        EXPECT_EQ(page->GetShownCount(), 1);
    }
}

// The texts of the language on show are found, whether the search makes them or they were
// made while the program was idle, after a selection and after a language change.
TEST_F(SearchTest, FindsTheTextsOfTheLanguageOnShow) {
    ShowGroup("H03");
    Page().SearchRows("伺服使能");
    const int chinese = Page().GetShownCount();
    ASSERT_GT(chinese, 0);
    for (bool idle : {false, true}) {
        SCOPED_TRACE(idle ? "texts made while idle" : "texts made by the search");
        if (idle) {
            ShowGroup("H03");
            EXPECT_TRUE(AfxPumpMessagesUntil(
                [&] {
                    return Page().GetSearchIndex().GetCount() >= Page().GetGroupVars().GetCount();
                },
                2000));
        }
        SetEnglish(true);
        if (idle)
            Pump();
        Page().SearchRows("servo on");
        EXPECT_EQ(Page().GetShownCount(), chinese);
        Page().SearchRows("di1 function");
        EXPECT_TRUE(Shows(Page(), "H03-02"));
        SetEnglish(false);
        if (idle)
            Pump();
        Page().SearchRows("servo on");
        EXPECT_EQ(Page().GetShownCount(), 0);
        Page().SearchRows("伺服使能");
        EXPECT_EQ(Page().GetShownCount(), chinese);
    }
}

TEST_F(SearchTest, AccessLevelLimitsTheFinds) {
    ShowGroup("H00");
    Page().SearchRows("h00-10");
    ASSERT_EQ(Page().GetShownCount(), 1);
    // H00-10 needs level 3; at level 1 the base still holds it but a search won't show it.
    module->SetAccessLevel(1);
    Page().SearchRows("h00-10");
    EXPECT_EQ(Page().GetShownCount(), 0);
    // The host sets a level on the module before it tells the panel: the texts for the level
    // are made while idle, and the next search finds by them.
    const int base = Page().GetGroupVars().GetCount();
    module->SetAccessLevel(3);
    table->SetModuleAccessLevel("ZD3S", 3);
    EXPECT_TRUE(
        AfxPumpMessagesUntil([&] { return Page().GetSearchIndex().GetCount() >= base; }, 2000));
    Page().SearchRows("h00-10");
    EXPECT_EQ(Page().GetShownCount(), 1);
}

class RowsTest : public ServoPageTest {
protected:
    void Select(CVarTablePageBase& page, std::initializer_list<int> rows) {
        page.GetList().SetItemState(-1, 0, LVIS_SELECTED);
        for (int row : rows)
            page.GetList().SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
    }
    // The entries of the menu a right click shows, as "id:text" ("-" first when greyed).
    CString MenuOf(CVarTablePageBase& page) {
        page.OnListRightClick();
        const AfxPrompt* menu = prompts.Last(AfxPrompt::PopupMenu);
        CString all;
        for (int i = 0; menu != nullptr && i < menu->menuItems.GetSize(); ++i)
            all += menu->menuItems[i] + "|";
        return all;
    }
};

TEST_F(RowsTest, MenuByPageAndSelection) {
    Page2().ShowAllParameters(Store());
    struct Case {
        bool firstPage;
        int inCustomOrModified;
        const char* starts;
    };
    const Case cases[] = {
        {true, 0, "2004:添加到监控列表|2107:导出|32817:筛选列|"},
        {false, 0, "2004:添加到监控列表|2105:下载勾选项|2103:全选|2099:取消全选|"},
        {true, 1, "2004:添加到监控列表|2097:编辑列表|2109:移除参数|"},
        {false, 1, "2004:添加到监控列表|2109:移除参数|"},
    };
    for (const Case& c : cases) {
        CVarTablePageBase& page = c.firstPage ? static_cast<CVarTablePageBase&>(Page()) : Page2();
        table->inCustomOrModified = c.inCustomOrModified;
        Select(page, {2});
        CString shown = MenuOf(page);
        SCOPED_TRACE(shown.GetString());
        EXPECT_EQ(shown.Find(c.starts), 0);
        // Nothing selected: the monitor entry is greyed.
        Select(page, {});
        shown = MenuOf(page);
        EXPECT_EQ(shown.Find("-2004:"), 0);
    }
    // The column dialog is on both menus without a custom selection.
    table->inCustomOrModified = 0;
    EXPECT_GE(MenuOf(Page()).Find("32817:筛选列"), 0);
    EXPECT_GE(MenuOf(Page2()).Find("32817:筛选列"), 0);
}

TEST_F(RowsTest, MonitorGetsTheSelectionOnceInRowOrder) {
    host.Access().ClearWatchList("ZD3S");
    Select(Page(), {7, 1, 3});
    prompts.ChooseMenuCommand(ID_ADD_TO_MONITOR);
    Page().OnListRightClick();
    std::vector<UINT> expected = {Page().GetShownVar(1)->GetInstanceAddress(),
                                  Page().GetShownVar(3)->GetInstanceAddress(),
                                  Page().GetShownVar(7)->GetInstanceAddress()};
    EXPECT_EQ(host.Access().WatchList("ZD3S"), expected);
    // 300 rows with the list scrolled: all of them, the earlier ones standing once.
    Page().GetList().SetItemState(-1, 0, LVIS_SELECTED);
    for (int row = 0; row < 300; ++row)
        Page().GetList().SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
    Page().GetList().EnsureVisible(250, FALSE);
    Page().AddToMonitorList();
    const std::vector<UINT> watched = host.Access().WatchList("ZD3S");
    ASSERT_EQ(watched.size(), 300u);
    EXPECT_EQ(watched[0], expected[0]);
    EXPECT_EQ(watched[3], Page().GetShownVar(0)->GetInstanceAddress());
}

TEST_F(RowsTest, RemoveRowsKeepsTheOtherMembers) {
    IGroupSet* custom = Store()->GetGroupRoot(1);
    ASSERT_NE(custom, nullptr);
    IGroupNode* group = custom->NewGroup();
    group->SetName("tuning");
    IGroupNode* child = custom->NewGroup();
    child->SetName("inner");
    for (const char* code : {"H00-10", "H02-04"}) {
        CString key;
        Var(code)->GetInstanceGuid(key);
        group->AddMember(key);
    }
    CString inner;
    Var("H03-02")->GetInstanceGuid(inner);
    child->AddMember(inner);
    ASSERT_TRUE(group->AddChild(child));
    ASSERT_TRUE(custom->AddGroup(group));
    table->ReloadModule();
    HTREEITEM item = table->GetTree().GetChildItem(table->GetCustomItem());
    ASSERT_NE(item, nullptr);
    table->GetTree().SelectItem(item);
    ASSERT_EQ(table->GetCurrentCustomGroup(), group);
    ASSERT_EQ(Page().GetShownCount(), 3);
    // H02-04 of the group itself and H03-02 of its child go; a No first changes nothing.
    Select(Page(), {RowOf("H02-04"), RowOf("H03-02")});
    prompts.AnswerMessageBox(IDNO);
    Page().RemoveRows();
    EXPECT_EQ(group->GetMemberCount(), 2);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "确定删除2个对象吗?");
    prompts.AnswerMessageBox(IDYES);
    Page().RemoveRows();
    EXPECT_EQ(group->GetMemberCount(), 1);
    EXPECT_EQ(child->GetMemberCount(), 0);
    ASSERT_EQ(Page().GetShownCount(), 1);
    EXPECT_GE(RowOf("H00-10"), 0);
}

TEST_F(RowsTest, ColumnChoicesSurviveATreeSelection) {
    CListCtrlEx& list = Page().GetList();
    const int name = 2;
    const int dec = 11;
    ASSERT_EQ(list.GetColumnWidth(dec), 0);
    list.SetColumnWidth(name, 300); // widened by the user, then hidden and brought back
    auto run = [&](std::function<void(CDialog&)> act) {
        CAfxModalDriver driver(std::move(act));
        Page().ChooseColumns();
    };
    run([&](CDialog& d) {
        EXPECT_EQ(d.IsDlgButtonChecked(2164), 0u); // "通讯地址(Dec)" starts hidden
        EXPECT_EQ(d.IsDlgButtonChecked(2085), 1u);
        d.CheckDlgButton(2164, BST_CHECKED);
        d.CheckDlgButton(2085, BST_UNCHECKED);
        d.SendMessage(WM_COMMAND, IDOK, 0);
    });
    // Back at 80, or as wide as its title needs.
    const int shown = list.GetColumnWidth(dec);
    EXPECT_GE(shown, 80);
    EXPECT_EQ(list.GetColumnWidth(name), 0);
    ShowGroup("H03");
    EXPECT_EQ(list.GetColumnWidth(dec), shown);
    EXPECT_EQ(list.GetColumnWidth(name), 0);
    // Cancel after changing ticks leaves every width alone.
    run([&](CDialog& d) {
        d.CheckDlgButton(2085, BST_CHECKED);
        d.SendMessage(WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(list.GetColumnWidth(name), 0);
    run([&](CDialog& d) {
        d.CheckDlgButton(2085, BST_CHECKED);
        d.SendMessage(WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(list.GetColumnWidth(name), Page().GetColumnWidths()[size_t(name)]);
    EXPECT_NE(list.GetColumnWidth(name), 300);
}

uint32_t Word(const std::string& b, size_t at) {
    uint32_t v = 0;
    for (int i = 3; i >= 0; --i)
        v = (v << 8) | uint8_t(b[at + size_t(i)]);
    return v;
}

TEST(ZxdRecordTest, ValueWordsAndTheChecksumRule) {
    struct Case {
        Variant value;
        uint32_t word;
    };
    const Case cases[] = {
        {Variant::I4(-1), 0xFFFFFFFFu},
        {Variant::I2(-1), 0xFFFFFFFFu},
        {Variant::R4(1.5f), 1u},
        {Variant::R8(-2.7), 0xFFFFFFFEu},
        {Variant::UI2(65535), 65535u},
        {Variant::UI4(0x80000000u), 0x80000000u},
        {Variant(), 0u},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ZxdValueWord(c.value), c.word) << c.value.vt;
    // The worked example: address 0x102, flags 0x82, value 1.
    const BYTE record[12] = {0x02, 0x01, 0, 0, 0x82, 0, 0, 0, 0x01, 0, 0, 0};
    EXPECT_EQ(ZxdChecksum(record, sizeof record), 0xFFFFFF79u);
}

class ZxdFileTest : public ServoPageTest {
protected:
    TempDir temp;
    std::filesystem::path dir{temp.Path()};
    // Checks the layout of `bytes` for `rows` records and returns the inflated image.
    std::string CheckFile(const std::string& bytes, uint32_t rows) {
        EXPECT_GE(bytes.size(), 256u + 16u * rows + 12u);
        if (bytes.size() < 256u + 16u * rows + 12u)
            return {};
        EXPECT_EQ(Word(bytes, 0), 0x01000001u); // format words 1 and 0x0100
        EXPECT_EQ(Word(bytes, 44), rows);
        // The sum runs over the label as the module holds it, not as the file has it.
        std::string summed = bytes.substr(0, 48);
        for (size_t i = 4; i < 36; i += 2)
            std::swap(summed[i], summed[i + 1]);
        EXPECT_EQ(Word(bytes, 60),
                  ZxdChecksum(reinterpret_cast<const BYTE*>(summed.data()), summed.size()));
        const BYTE* label = module->GetElecLabel();
        EXPECT_EQ(std::memcmp(summed.data() + 4, label, std::min(32u, module->GetElecLabelSize())),
                  0);
        for (uint32_t r = 0; r < rows; ++r) {
            const size_t at = 256 + 16 * r;
            EXPECT_EQ(Word(bytes, at + 12),
                      ZxdChecksum(reinterpret_cast<const BYTE*>(bytes.data() + at), 12))
                << r;
        }
        const size_t end = 256 + 16 * rows;
        EXPECT_EQ(Word(bytes, end), ZXD_END_MARK);
        const uint32_t size = Word(bytes, end + 4);
        const uint32_t packed = Word(bytes, end + 8);
        EXPECT_EQ(bytes.size(), end + 12 + packed);
        std::string image(size, '\0');
        uLongf length = size;
        EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(image.data()), &length,
                             reinterpret_cast<const Bytef*>(bytes.data() + end + 12), packed),
                  Z_OK);
        EXPECT_EQ(length, size);
        return image;
    }
};

TEST_F(ZxdFileTest, RowsOfTheListTheirImageAndAnUnwritablePlace) {
    ShowGroup("H00");
    std::vector<IVarObjEx*> rows;
    Page().CollectShown(rows);
    ASSERT_GT(rows.size(), 3u);
    const std::filesystem::path path = dir / "h00.zxd";
    ASSERT_EQ(WriteZxdFile(path.string(), module, rows), ZxdResult::Written);
    const std::string bytes = Slurp(path);
    const std::string image = CheckFile(bytes, uint32_t(rows.size()));
    EXPECT_EQ(image, SerializeRowsAsParamFile(module, rows));
    // Each record: the row's address, and its flags from decimals, type and modify mode.
    for (size_t r = 0; r < rows.size(); ++r) {
        IVarAttr* attr = rows[r]->GetAttr();
        EXPECT_EQ(Word(bytes, 256 + 16 * r), rows[r]->GetInstanceAddress());
        const uint32_t flags = Word(bytes, 256 + 16 * r + 4);
        EXPECT_EQ(flags & 7u, uint32_t(attr->GetDecimals() <= 4 ? attr->GetDecimals() : 0));
        EXPECT_EQ((flags & 0x800u) != 0, attr->GetModifyMode() == 1);
        EXPECT_EQ((flags & 0x1000u) != 0, attr->GetModifyMode() == 2);
    }
    // A null row keeps its place in the count but has no record: the end mark comes early.
    rows.insert(rows.begin() + 1, nullptr);
    ASSERT_EQ(WriteZxdFile(path.string(), module, rows), ZxdResult::Written);
    const std::string withNull = Slurp(path);
    EXPECT_EQ(Word(withNull, 44), uint32_t(rows.size()));
    EXPECT_EQ(Word(withNull, 256 + 16 * (rows.size() - 1)), ZXD_END_MARK);

    // An empty list makes a whole file; an unwritable place gives the open failure.
    ASSERT_EQ(WriteZxdFile(path.string(), module, {}), ZxdResult::Written);
    CheckFile(Slurp(path), 0);
    prompts.ChooseFiles({CString((dir / "missing" / "x.zxd").string().c_str())});
    table->OnFrameCommand(ID_EXPORT_ZXD);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "文件打开失败");
}

// Command 32857 of the frame reads the drive first: the records hold what the drive holds,
// the end of that upload starts no save of its own, and a failed read leaves no file.
TEST_F(ZxdFileTest, TheFrameCommandUploadsBeforeTheExport) {
    ShowGroup("H00");
    const int row = 2;
    IVarObjEx* var = Page().GetShownVar(row);
    const UINT address = var->GetInstanceAddress();
    double raw = 0;
    ASSERT_TRUE(drive->PeekRaw(address, raw));
    ASSERT_TRUE(drive->PokeRaw(address, raw + 1));
    const std::filesystem::path fresh = dir / "fresh.zxd";
    prompts.ChooseFiles({CString(fresh.string().c_str())});
    ASSERT_TRUE(table->OnFrameCommand(ID_EXPORT_ZXD));
    EXPECT_EQ(table->busyExporting, 0);
    const std::string bytes = Slurp(fresh);
    CheckFile(bytes, uint32_t(Page().GetShownCount()));
    EXPECT_EQ(Word(bytes, 256 + 16 * row + 8), uint32_t(raw + 1));
    ASSERT_EQ(prompts.Count(AfxPrompt::FileDialog), 1u);
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->defExt, "zxd");
    EXPECT_EQ(prompts.Last(AfxPrompt::FileDialog)->text.Right(4), ".zxd");
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "文件保存成功");

    drive->SetFailure(zorhost::sim::FailureMode::FailReads, {address});
    const std::filesystem::path failed = dir / "failed.zxd";
    prompts.ChooseFiles({CString(failed.string().c_str())});
    table->OnFrameCommand(ID_EXPORT_ZXD);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "参数上传失败,未导出ZXD文件");
    EXPECT_EQ(prompts.Count(AfxPrompt::FileDialog), 1u);
    EXPECT_FALSE(std::filesystem::exists(failed));
}

} // namespace
} // namespace pt
