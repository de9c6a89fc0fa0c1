// The round trip of a value through the real lists: the text a cell shows, committed as it
// stands, writes nothing; a value typed or chosen in the cell's editor reaches the drive as
// exactly the raw figure the user's text means; and the cell then shows that figure in its
// own form. One drive holds a parameter for every data type, display format, kind of
// editor and number of places; both lists run through all of them.
#include "TempDir.h"
#include "page_fixture.h"

#include "values/WriteVarDialog.h"

#include <cmath>
#include <fstream>
#include <sstream>

namespace pt {
namespace {

enum Editor { Typed, Listed, Bits, Connector };

struct Case {
    const char* type;
    int format; // 0 decimal, 1 hexadecimal
    Editor editor;
    int decimals;
    CString code;
};

const char* const kTypes[] = {"i16", "u16", "i32", "u32"};
const Editor kEditors[] = {Typed, Listed, Bits, Connector};
const int kDecimals[] = {0, 1, 3};
// Connector values of the two signals: the group's base plus the address modulo 100
// (0x1201 is 4609).
constexpr int kSignal1 = 1209;
constexpr int kSignal2 = 1210;

bool Signed(const char* type) {
    return type[0] == 'i';
}

// Every combination: 16-bit parameters in group H00, 32-bit ones in H01, each two
// addresses apart so that a 32-bit value has its two registers.
std::vector<Case> AllCases() {
    std::vector<Case> cases;
    int next[2] = {0, 0}; // the next index of H00 and of H01
    for (const char* type : kTypes) {
        const int group = type[1] == '3' ? 1 : 0;
        for (Editor editor : kEditors)
            for (int format : {0, 1})
                for (int decimals : kDecimals) {
                    CString code;
                    code.Format("H%02d-%02d", group, next[group]);
                    next[group] += 2;
                    cases.push_back({type, format, editor, decimals, code});
                }
    }
    return cases;
}

// The figures of each case: what the drive holds at first and what the user means.
int Factory(const Case& c) {
    return c.editor == Typed ? 300 : c.editor == Connector ? kSignal1 : 5;
}

int Meant(const Case& c) {
    if (c.editor == Typed)
        return Signed(c.type) ? -1234 : 1234;
    return c.editor == Connector ? kSignal2 : 10;
}

std::string DeviceJson(const std::vector<Case>& cases) {
    std::ostringstream j;
    j << R"({"format": 1, "product": {"name": "RT", "lineId": 9, "productId": 9,
        "electronicLabel": "0009 0009 0000 0000 0000 0000 0000 0001", "kind": "servo", "accessModel": 0},
        "parameters": [)";
    for (const Case& c : cases) {
        j << R"({"code": ")" << c.code.GetString() << R"(", "name": "p", "type": ")" << c.type
          << R"(", "display": )" << c.format << R"(, "decimals": )" << c.decimals
          << R"(, "factory": )" << Factory(c) << R"(, "min": )" << (Signed(c.type) ? -20000 : 0)
          << R"(, "max": 20000)";
        if (c.editor == Listed)
            j << R"(, "values": {"enum": [{"value": 0, "text": "零"}, {"value": 5, "text": "五"},
                {"value": 10, "text": "十"}, {"value": 300, "text": "三百"}]})";
        if (c.editor == Bits)
            j << R"(, "values": {"bits": [{"bit": 0, "text": "b0"}, {"bit": 1, "text": "b1"},
                {"bit": 2, "text": "b2"}, {"bit": 3, "text": "b3"}]})";
        if (c.editor == Connector)
            j << R"(, "values": {"enum": [{"value": 0, "text": "无"}, {"value": 1, "text": "K连接器"}]})";
        j << "},";
    }
    j << R"({"code": "H12-01", "name": "信号1", "type": "u16"},
            {"code": "H12-02", "name": "信号2", "type": "u16"},
            {"code": "H12-03", "name": "模式字", "type": "u16", "display": 1, "values": {"bitRanges": [
                {"text": "低", "first": 0, "width": 4, "options": [{"value": 1, "text": "一"}]},
                {"text": "高", "first": 4, "width": 4, "options": [{"value": 0, "text": "零"},
                    {"value": 10, "text": "十"}, {"value": 12, "text": "十二"}]},
                {"text": "单", "first": 8, "width": 1, "options": [{"value": 1, "text": "开"}]}]}}],
        "groups": [{"name": "H00", "members": "*"}, {"name": "H01", "members": "*"},
                   {"name": "H12", "members": "*"}],
        "connectors": [{"kind": "K", "name": "K信号", "group": "H12", "base": 1200}]})";
    return j.str();
}

class RoundTripTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        const std::string path = dir / "rt.json";
        std::ofstream(path) << DeviceJson(cases);
        zorhost::ProjectSetup setup;
        setup.modules.resize(1);
        setup.modules[0].deviceFile = path;
        setup.modules[0].key = "RT";
        setup.modules[0].number = 1;
        std::string error;
        ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    }

    void OpenList(int style) {
        IConnectorTable* connectors = host.Module("RT")->GetVarCatalog()->GetConnectorTable();
        ASSERT_EQ(connectors->ValueFromCode("H12-01", 2), kSignal1);
        ASSERT_EQ(connectors->ValueFromCode("H12-02", 2), kSignal2);
        host.Project()->Workspace().SetListStyle(style);
        OpenFrame("RT");
        page = static_cast<CVarTablePageBase*>(style == 0 ? table->GetPage1() : table->GetPage2());
        ASSERT_NE(page, nullptr);
        for (const Case& c : cases)
            drive->PokeRaw(Address(c.code.GetString()), Factory(c));
        ReadCycleAll();
    }
    // Reads every row, as the cycle does for the rows on screen.
    void ReadCycleAll() {
        for (int row = 0; row < page->GetShownCount(); row += 20) {
            page->GetList().EnsureVisible(std::min(row + 19, page->GetShownCount() - 1), FALSE);
            page->SubmitRefreshQuery();
            host.Refresh().RunCycle();
        }
        Pump();
    }
    CListCtrlEx& L() { return page->GetList(); }

    // The cell form of a raw figure, by the display table: hexadecimal of the type's
    // width without places, else the decimal figure with its places.
    static CString Shown(const Case& c, int raw) {
        CString text;
        if (c.format == 1 && c.decimals == 0) {
            const unsigned mask = c.type[1] == '1' ? 0xFFFFu : 0xFFFFFFFFu;
            text.Format("0x%04X", unsigned(raw) & mask);
        } else {
            text.Format("%.*f", c.decimals, raw / std::pow(10.0, c.decimals));
        }
        return text;
    }
    // What the value cell of the list must read for `raw`: a connector names its target,
    // an enumeration adds its entry's name.
    CString CellFor(const Case& c, int raw) {
        if (c.editor == Connector)
            return raw == kSignal1 ? "H12-01[信号1]" : raw == kSignal2 ? "H12-02[信号2]" : "?";
        if (c.editor == Listed && (raw == 5 || raw == 10))
            return Shown(c, raw) + (raw == 10 ? "[十]" : "[五]");
        return Shown(c, raw);
    }

    void ClickValue(int row) {
        L().EnsureVisible(row, FALSE);
        L().ClickCell(row, page->GetValueColumn());
    }
    CEdit* OpenEdit(int row) {
        ClickValue(row);
        if (L().GetItemEdit().GetSafeHwnd() != nullptr)
            return &L().GetItemEdit();
        if (L().GetItemEditEx().GetSafeHwnd() != nullptr)
            return &L().GetItemEditEx();
        return nullptr;
    }
    CComboBox* OpenCombo(int row) {
        ClickValue(row);
        return L().GetItemCombo().GetSafeHwnd() != nullptr ? &L().GetItemCombo() : nullptr;
    }
    void Choose(CComboBox* combo, int index) {
        static_cast<CItemComBox*>(combo)->ChooseEntry(index);
        EXPECT_TRUE(
            AfxPumpMessagesUntil([&] { return L().GetItemCombo().GetSafeHwnd() == nullptr; }, 1000))
            << "the drop-down closes on a choice";
    }
    // Opens the cell's dialog (the bit view, or the connector dialog from the drop-down's
    // last entry) and takes `figure` typed into its value field, or the figure as it
    // opened when `figure` is empty.
    void RunDialog(const Case& c, int row, const CString& figure) {
        CAfxModalDriver driver([&](CDialog& d) {
            if (!figure.IsEmpty())
                d.SetDlgItemText(int(IDC_WRITE_VALUE), figure.GetString());
            ClickOk(d);
        });
        if (c.editor == Bits) {
            ClickValue(row);
            ASSERT_TRUE(L().IsButtonShown());
            L().GetItemButton().Click();
        } else {
            CComboBox* combo = OpenCombo(row);
            ASSERT_NE(combo, nullptr);
            Choose(combo, combo->GetCount() - 1);
        }
        EXPECT_EQ(driver.runs, 1);
    }

    // The value the list's commit left: the drive's on the live list, the staged set value
    // (what a write of the checked row carries) on the staging list.
    double Committed(const Case& c) {
        if (page->IsFirstPage())
            return DriveValue(c.code.GetString());
        const Variant set = Var(c.code.GetString())->GetSetValue();
        return set.IsEmptyOrNull() ? -99999
                                   : host.Services().Get<IHostVarUtil>()->VariantAsDouble(set);
    }
    CString ValueCell(int row) { return L().GetItemText(row, page->GetValueColumn()); }

    // A case that fails stops there; the others still run.
    void RunCase(const Case& c);

    std::vector<Case> cases = AllCases();
    TempDir dir;
    CVarTablePageBase* page = nullptr;
};

void RoundTripTest::RunCase(const Case& c) {
    SCOPED_TRACE(testing::Message() << c.code.GetString() << " " << c.type << " format " << c.format
                                    << " editor " << int(c.editor) << " places " << c.decimals
                                    << " page " << (page->IsFirstPage() ? 1 : 2));
    const char* code = c.code.GetString();
    const int row = RowOf(code, page);
    ASSERT_GE(row, 0);
    const size_t boxes = prompts.Count(AfxPrompt::MessageBox);
    const int first = Factory(c);
    const int meant = Meant(c);
    EXPECT_EQ(L().GetItemText(row, page->GetCurrentValueColumn()), CellFor(c, first));
    Writes();

    // (a) What the cell shows, taken back unchanged, changes nothing.
    switch (c.editor) {
    case Typed: {
        CEdit* edit = OpenEdit(row);
        ASSERT_NE(edit, nullptr);
        EXPECT_EQ(edit->GetWindowTextString(), ValueCell(row));
        // The staging list's cell is empty ("---"): take the current value's text.
        if (!page->IsFirstPage())
            edit->SetWindowText(CellFor(c, first).GetString());
        AfxTestPressKey(edit, VK_RETURN);
        break;
    }
    case Listed: {
        CComboBox* combo = OpenCombo(row);
        ASSERT_NE(combo, nullptr);
        if (page->IsFirstPage()) {
            // The drop-down opens on the cell's own entry.
            ASSERT_GE(combo->GetCurSel(), 0);
            CString entry;
            combo->GetLBText(combo->GetCurSel(), entry);
            EXPECT_EQ(entry, CellFor(c, first));
        }
        Choose(combo, 1); // the entry of the factory value 5
        break;
    }
    case Bits:
    case Connector:
        RunDialog(c, row, "");
        break;
    }
    EXPECT_TRUE(Writes().empty());
    EXPECT_EQ(DriveValue(code), first);
    if (!page->IsFirstPage()) {
        EXPECT_FALSE(Var(code)->IsChecked()) << "nothing to write";
    }
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes);

    // (b) A value typed or chosen reaches the drive as the raw figure the text means.
    switch (c.editor) {
    case Typed: {
        CEdit* edit = OpenEdit(row);
        ASSERT_NE(edit, nullptr);
        // A hexadecimal figure goes into the text edit, a decimal one (also of a
        // hexadecimal parameter with places) into the numeric edit with the places.
        EXPECT_EQ(edit == &L().GetItemEdit(), c.format == 0 || c.decimals > 0);
        edit->SetSel(0, -1);
        TypeKeys(edit, Shown(c, meant));
        EXPECT_EQ(edit->GetWindowTextString(), Shown(c, meant));
        AfxTestPressKey(edit, VK_RETURN);
        break;
    }
    case Listed: {
        CComboBox* combo = OpenCombo(row);
        ASSERT_NE(combo, nullptr);
        Choose(combo, 2);
        break;
    }
    case Bits: {
        // The bit view's figure: hexadecimal on a hexadecimal parameter.
        CString figure;
        figure.Format(c.format == 1 ? "0x%04X" : "%05d", meant);
        RunDialog(c, row, figure);
        break;
    }
    case Connector:
        RunDialog(c, row, CString(std::to_string(kSignal2).c_str()));
        break;
    }
    EXPECT_EQ(Committed(c), meant);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), boxes);

    // (c) The cell shows the new value in its own form.
    if (page->IsFirstPage())
        ReadCycleAll();
    else
        EXPECT_TRUE(Var(code)->IsChecked()) << "to be written";
    EXPECT_EQ(ValueCell(row), CellFor(c, meant));
}

TEST_F(RoundTripTest, EveryTypeFormatEditorAndPlacesOnBothLists) {
    for (int style : {0, 1}) {
        OpenList(style);
        for (const Case& c : cases)
            RunCase(c);
        CloseFrame();
    }
}

// A range is named by its first and last bit, a single bit alone; each shows the value of
// its bits, and an option, a figure in decimal even of 10 or more, lands at its own bits.
TEST_F(RoundTripTest, RangesJoinAtTheirBitsAndOptionsAreDecimal) {
    OpenList(0);
    const int row = RowOf("H12-03", page);
    ASSERT_GE(row, 0);
    drive->PokeRaw(Address("H12-03"), 0x101);
    ReadCycleAll();
    CAfxModalDriver driver([&](CDialog& d) {
        CZorSkinPGridCtrl* grid = static_cast<CWriteVarDialog&>(d).GetGrid();
        ASSERT_EQ(grid->GetRowCount(), 3);
        EXPECT_EQ(grid->GetCellText(1, 0), "bit4-bit7");
        EXPECT_EQ(grid->GetCellText(2, 0), "bit8");
        EXPECT_EQ(grid->GetCellItem(0, 2)->GetValue(), "1[一]");
        EXPECT_EQ(grid->GetCellItem(2, 2)->GetValue(), "1[开]");
        CZorSkinPGridItem* item = grid->GetCellItem(1, 2);
        for (int i = 0; i < item->GetOptionCount(); ++i)
            if (item->GetOption(i).Find("10[") == 0)
                item->ChooseOption(i);
        EXPECT_EQ(d.GetDlgItem(int(IDC_WRITE_VALUE))->GetWindowTextString(), "0x01A1");
        ClickOk(d);
    });
    ClickValue(row);
    ASSERT_TRUE(L().IsButtonShown());
    L().GetItemButton().Click();
    EXPECT_EQ(driver.runs, 1);
    EXPECT_EQ(DriveValue("H12-03"), 0x1A1);
}

} // namespace
} // namespace pt
