#include <afx/afxcmn.h>
#include <afx/afxqt.h>
#include <afx/afxtest.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QWheelEvent>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

enum : UINT {
    IDD_CONTROLS = 9600,
    IDC_LEVEL = 9601,
    IDC_SEARCH = 9602,
    IDC_NOTE = 9603,
    IDC_R1 = 9604,
    IDC_R2 = 9605,
    IDC_S1 = 9606,
    IDC_S2 = 9607,
    IDC_PASSWORD = 9608,
};

void RegisterControls() {
    AfxRegisterDialog(AfxGetInstanceHandle(),
                      {IDD_CONTROLS,
                       "controls",
                       400,
                       300,
                       {{IDC_LEVEL, DlgCtl::ComboDropList, "", 10, 10, 150, 24},
                        {IDC_SEARCH, DlgCtl::ComboDropDown, "", 10, 40, 150, 24},
                        {IDC_NOTE, DlgCtl::Edit, "", 10, 70, 200, 80, ES_MULTILINE | ES_READONLY},
                        {IDC_R1, DlgCtl::Radio, "一", 10, 160, 60, 20, WS_GROUP},
                        {IDC_R2, DlgCtl::Radio, "二", 80, 160, 60, 20},
                        {IDC_S1, DlgCtl::Radio, "甲", 10, 190, 60, 20, WS_GROUP},
                        {IDC_S2, DlgCtl::Radio, "乙", 80, 190, 60, 20},
                        {IDC_PASSWORD, DlgCtl::Edit, "", 10, 220, 100, 22, ES_PASSWORD}}});
}

class ControlsDialog : public CDialog {
public:
    ControlsDialog() : CDialog(IDD_CONTROLS) {}
    std::vector<std::pair<UINT, UINT>> commands;
    bool destroyComboOnSelect = false;

protected:
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override {
        commands.emplace_back(LOWORD(wParam), HIWORD(wParam));
        // A cell editor closes its box from the confirmation itself.
        if (destroyComboOnSelect && LOWORD(wParam) == IDC_LEVEL && HIWORD(wParam) == CBN_SELENDOK)
            GetDlgItem(IDC_LEVEL)->DestroyWindow();
        return CDialog::OnCommand(wParam, lParam);
    }
};

class ControlsTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterControls();
        ASSERT_TRUE(dlg.Create(IDD_CONTROLS));
    }
    template <class T> T* Item(UINT id) { return dynamic_cast<T*>(dlg.GetDlgItem(int(id))); }
    std::vector<UINT> CodesOf(UINT id) const {
        std::vector<UINT> v;
        for (const auto& [i, code] : dlg.commands)
            if (i == id)
                v.push_back(code);
        return v;
    }
    ControlsDialog dlg;
};

} // namespace

TEST_F(ControlsTest, ComboEntriesDataAndChoice) {
    auto* level = Item<CComboBox>(IDC_LEVEL);
    ASSERT_NE(level, nullptr); // the stand-in has the control's class
    EXPECT_EQ(level->AddString("user"), 0);
    EXPECT_EQ(level->AddString("service"), 1);
    level->SetItemData(1, 0xABCD);
    EXPECT_EQ(level->InsertString(0, "Factory"), 0);
    EXPECT_EQ(level->GetCurSel(), CB_ERR); // adding selects nothing
    CString text;
    level->GetLBText(2, text);
    EXPECT_EQ(text, "service");
    EXPECT_EQ(level->SetCurSel(9), CB_ERR);
    EXPECT_EQ(level->GetCurSel(), CB_ERR);
    dlg.commands.clear();
    level->ChooseEntry(2);
    EXPECT_EQ(level->GetCurSel(), 2);
    EXPECT_EQ(level->GetWindowTextString(), "service");
    EXPECT_EQ(CodesOf(IDC_LEVEL), (std::vector<UINT>{CBN_SELCHANGE, CBN_SELENDOK, CBN_CLOSEUP}));
    EXPECT_EQ(level->GetItemData(2), 0xABCDu); // data stays with its entry
    level->ResetContent();
    EXPECT_EQ(level->GetCount(), 0);
}

TEST_F(ControlsTest, ComboDestroyedByItsConfirmationIsSafe) {
    auto* level = Item<CComboBox>(IDC_LEVEL);
    level->AddString("a");
    level->AddString("b");
    const HWND h = level->GetSafeHwnd();
    dlg.destroyComboOnSelect = true;
    level->ChooseEntry(1);
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(CodesOf(IDC_LEVEL), (std::vector<UINT>{CBN_SELCHANGE, CBN_SELENDOK}));
    EXPECT_TRUE(AfxPumpMessagesUntil([] { return true; }, 100));
}

TEST_F(ControlsTest, EditableComboAndEdits) {
    auto* search = Item<CComboBox>(IDC_SEARCH);
    ASSERT_NE(search, nullptr);
    search->AddString("H00-01");
    AfxTestTypeText(search, "H01");
    EXPECT_EQ(search->GetWindowTextString(), "H01");
    EXPECT_EQ(search->GetCurSel(), CB_ERR);

    auto* note = Item<CEdit>(IDC_NOTE);
    ASSERT_NE(note, nullptr);
    note->SetWindowText("第一行\r\n第二行");
    EXPECT_EQ(note->GetWindowTextString(), "第一行\r\n第二行");

    // Selections count characters, also beyond the basic plane.
    auto* pw = Item<CEdit>(IDC_PASSWORD);
    pw->SetWindowText("1中😀5");
    pw->SetSel(1, 3);
    int a = 0, b = 0;
    pw->GetSel(a, b);
    EXPECT_EQ(std::make_pair(a, b), std::make_pair(1, 3));
    pw->SetSel(0, -1);
    pw->GetSel(a, b);
    EXPECT_EQ(std::make_pair(a, b), std::make_pair(0, 4));
    dlg.SetDlgItemInt(IDC_PASSWORD, UINT(-12), TRUE);
    EXPECT_EQ(pw->GetWindowTextString(), "-12");
}

TEST_F(ControlsTest, RadioGroupsStayApart) {
    for (UINT id : {IDC_R2, IDC_S1, IDC_R1})
        Item<CButton>(id)->Click();
    EXPECT_EQ(dlg.IsDlgButtonChecked(IDC_R2), 0u);
    EXPECT_EQ(dlg.IsDlgButtonChecked(IDC_S1), 1u); // the other group kept its choice
    dlg.CheckRadioButton(IDC_S1, IDC_S2, IDC_S2);
    EXPECT_EQ(dlg.IsDlgButtonChecked(IDC_S1), 0u);
}

namespace {

// Records what a list gets when its header moves or the wheel turns over it.
class WatchingList : public CListCtrl {
public:
    std::vector<int> resized;
    int wheels = 0;
    bool eatWheel = false;

protected:
    BOOL OnNotify(WPARAM, LPARAM lParam, LRESULT*) override {
        auto* nm = reinterpret_cast<NMHEADER*>(lParam);
        if (nm->hdr.code == HDN_ITEMCHANGED)
            resized.push_back(nm->iItem);
        return FALSE;
    }
    BOOL OnMouseWheel(UINT flags, short delta, CPoint pt) override {
        ++wheels;
        return eatWheel ? TRUE : CListCtrl::OnMouseWheel(flags, delta, pt);
    }
};

} // namespace

TEST(ListControlTest, HearsHeaderAndWheel) {
    CWnd host;
    ASSERT_TRUE(
        host.Create(nullptr, "host", WS_POPUP | WS_VISIBLE, CRect(0, 0, 400, 300), nullptr, 0));
    WatchingList list;
    ASSERT_TRUE(list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA,
                            CRect(0, 0, 400, 300), &host, 1));
    list.InsertColumn(0, "a", LVCFMT_LEFT, 100);
    list.InsertColumn(1, "b", LVCFMT_LEFT, 100);
    list.SetItemCount(1000);
    list.SetColumnWidth(1, 150);
    ASSERT_FALSE(list.resized.empty());
    EXPECT_EQ(list.resized.back(), 1);
    list.EnsureVisible(500, FALSE);
    const int top = list.GetTopIndex();
    auto* area = qobject_cast<QAbstractScrollArea*>(AfxWidgetFromHandle(list.GetSafeHwnd()));
    ASSERT_NE(area, nullptr);
    QWidget* viewport = area->viewport();
    auto wheel = [&] {
        QWheelEvent e(QPointF(50, 50), viewport->mapToGlobal(QPointF(50, 50)), QPoint(),
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &e);
    };
    list.eatWheel = true;
    wheel();
    EXPECT_EQ(list.wheels, 1);
    EXPECT_EQ(list.GetTopIndex(), top); // swallowed: nothing scrolled
    list.eatWheel = false;
    wheel();
    EXPECT_EQ(list.wheels, 2);
    EXPECT_GT(list.GetTopIndex(), top);
}
