// Windows and the controls in them: destruction order, focus, capture and the cursor,
// child dialogs in placeholders, help and subclassing, and the combo boxes, edits and radio
// groups of a dialog.
#include <afx/afxcmn.h>
#include <afx/afxqt.h>
#include <afx/afxtest.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <vector>

namespace {

class HelpParent : public CDialog {
public:
    HelpParent() : CDialog(9500) {}
    int helps = 0;
    int helpCtrl = 0;
    BOOL OnHelpInfo(HELPINFO* info) override {
        ++helps;
        helpCtrl = info->iCtrlId;
        return TRUE;
    }
};

// A list that swallows left clicks: its own selection must not change.
class DeafList : public CListCtrl {
protected:
    void OnLButtonDown(UINT, CPoint) override {}
};

TEST(WindowTest, HelpClimbsToTheParentAndASubclassTakesTheClicks) {
    AfxRegisterDialog(AfxGetInstanceHandle(),
                      {9500,
                       "help",
                       300,
                       200,
                       {{9501, DlgCtl::Edit, "", 10, 10, 100, 22},
                        {9502, DlgCtl::List, "", 10, 40, 280, 150, LVS_REPORT | LVS_OWNERDATA}}});
    HelpParent dlg;
    ASSERT_TRUE(dlg.Create(9500));
    AfxTestPressKey(dlg.GetDlgItem(9501), VK_F1);
    EXPECT_EQ(dlg.helps, 1);
    EXPECT_EQ(dlg.helpCtrl, 9501);
    auto* list = static_cast<CListCtrl*>(dlg.GetDlgItem(9502));
    list->InsertColumn(0, "a", LVCFMT_LEFT, 100);
    list->SetItemCount(2);
    list->ClickCell(1, 0);

    DeafList deaf;
    ASSERT_TRUE(deaf.SubclassDlgItem(9502, &dlg));
    EXPECT_EQ(deaf.GetItemState(1, LVIS_SELECTED), LVIS_SELECTED);
    deaf.ClickCell(0, 0);
    EXPECT_EQ(deaf.GetItemState(0, LVIS_SELECTED), 0u);
    EXPECT_EQ(deaf.GetItemState(1, LVIS_SELECTED), LVIS_SELECTED);
}

// Logs its destruction; destroys and deletes a window it made in its own OnDestroy, as a
// panel does with the frame inside it.
class LoggingWnd : public CWnd {
public:
    LoggingWnd(std::vector<CString>* log, const char* name) : m_log(log), m_name(name) {}
    LoggingWnd* made = nullptr;

    BOOL MakeIn(CWnd* parent) {
        const DWORD style = parent ? WS_CHILD | WS_VISIBLE : WS_POPUP;
        return Create(nullptr, m_name.GetString(), style, CRect(0, 0, 40, 40), parent, 0);
    }

protected:
    void OnDestroy() override {
        m_log->push_back(m_name + " destroy");
        if (made) {
            made->DestroyWindow();
            delete made;
            made = nullptr;
        }
    }
    void PostNcDestroy() override { m_log->push_back(m_name + " nc"); }

private:
    std::vector<CString>* m_log;
    CString m_name;
};

TEST(WindowTest, ChildrenHearOnDestroyOnceWhenTheirParentGoes) {
    std::vector<CString> log;
    LoggingWnd top(&log, "top");
    ASSERT_TRUE(top.MakeIn(nullptr));
    auto* frame = new LoggingWnd(&log, "frame");
    ASSERT_TRUE(frame->MakeIn(&top));
    top.made = frame;
    LoggingWnd page(&log, "page");
    ASSERT_TRUE(page.MakeIn(frame));
    LoggingWnd side(&log, "side");
    ASSERT_TRUE(side.MakeIn(&top));
    EXPECT_TRUE(top.DestroyWindow());
    const std::vector<CString> expected{"top destroy", "frame destroy", "page destroy", "page nc",
                                        "frame nc",    "side destroy",  "side nc",      "top nc"};
    EXPECT_EQ(log, expected);
    EXPECT_EQ(page.GetSafeHwnd(), nullptr);
    EXPECT_FALSE(side.DestroyWindow());
}

TEST(WindowTest, AWindowDeletedByItsOwnerDetachesItsObject) {
    CWnd parent;
    ASSERT_TRUE(parent.Create(nullptr, "p", WS_POPUP, CRect(0, 0, 50, 50), nullptr, 0));
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD | WS_VISIBLE, CRect(0, 0, 40, 20), &parent, 1));
    delete AfxWidgetFromHandle(edit.GetSafeHwnd()); // someone else deletes the widget
    EXPECT_EQ(edit.GetSafeHwnd(), nullptr);
    edit.SetWindowText("no crash");
    EXPECT_EQ(edit.GetWindowTextString(), "");
}

// Commits its text when it loses the focus, as a cell editor does.
class CommitEdit : public CEdit {
public:
    std::vector<CString> commits;
    std::vector<CWnd*> focusTo;

protected:
    void OnKillFocus(CWnd* pNewWnd) override {
        commits.push_back(GetWindowTextString());
        focusTo.push_back(pNewWnd);
        CEdit::OnKillFocus(pNewWnd);
    }
};

TEST(WindowTest, FocusMovesAndADestroyedEditorLosesItFirst) {
    CWnd host;
    ASSERT_TRUE(
        host.Create(nullptr, "focus", WS_POPUP | WS_VISIBLE, CRect(0, 0, 200, 100), nullptr, 0));
    host.BringWindowToTop();
    CommitEdit editor;
    CEdit other;
    ASSERT_TRUE(editor.Create(WS_CHILD | WS_VISIBLE, CRect(0, 0, 100, 22), &host, 1));
    ASSERT_TRUE(other.Create(WS_CHILD | WS_VISIBLE, CRect(0, 30, 100, 52), &host, 2));
    editor.SetFocus();
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return CWnd::GetFocus() == &editor; }, 2000));
    editor.SetWindowText("12.5");
    other.SetFocus();
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return !editor.commits.empty(); }, 2000));
    EXPECT_EQ(editor.commits[0], "12.5");
    EXPECT_EQ(editor.focusTo[0], &other);
    editor.SetFocus();
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return CWnd::GetFocus() == &editor; }, 2000));
    editor.SetWindowText("7");
    editor.DestroyWindow(); // the commit comes from the loss of focus, before the window goes
    ASSERT_EQ(editor.commits.size(), 2u);
    EXPECT_EQ(editor.commits[1], "7");
}

// Drags a bar, as a splitter does: capture on press, moves while held, release.
class Bar : public CWnd {
public:
    std::vector<CPoint> moves;
    bool captured = false;

protected:
    void OnLButtonDown(UINT, CPoint) override {
        SetCapture();
        captured = GetCapture() == this;
    }
    void OnMouseMove(UINT, CPoint p) override {
        moves.push_back(p);
        SetCursor(LoadCursor(nullptr, IDC_SIZEWE));
    }
    void OnLButtonUp(UINT, CPoint) override { ReleaseCapture(); }
};

TEST(WindowTest, PlainWindowsHearMovesAndSetTheCursor) {
    CWnd host;
    ASSERT_TRUE(
        host.Create(nullptr, "bars", WS_POPUP | WS_VISIBLE, CRect(0, 0, 200, 100), nullptr, 0));
    Bar bar;
    ASSERT_TRUE(
        bar.Create(nullptr, "", WS_CHILD | WS_VISIBLE, CRect(100, 0, 106, 100), &host, 1986));
    QWidget* w = AfxWidgetFromHandle(bar.GetSafeHwnd());
    auto send = [&](QEvent::Type t, QPoint at, Qt::MouseButtons held) {
        QMouseEvent e(t, at, w->mapToGlobal(at),
                      t == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(w, &e);
    };
    send(QEvent::MouseMove, QPoint(3, 40), Qt::NoButton);
    ASSERT_EQ(bar.moves.size(), 1u);
    EXPECT_EQ(bar.moves[0], CPoint(3, 40));
    EXPECT_EQ(w->cursor().shape(), Qt::SplitHCursor);
    send(QEvent::MouseButtonPress, QPoint(3, 40), Qt::LeftButton);
    EXPECT_TRUE(bar.captured);
    send(QEvent::MouseButtonRelease, QPoint(3, 40), Qt::NoButton);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

enum : UINT { IDD_PANEL = 9210, IDC_HOLE, IDD_CHILD, IDC_CHILD_EDIT };

class ChildDialog : public CDialog {
public:
    ChildDialog() : CDialog(IDD_CHILD) {}
    std::vector<CSize> sizes;

protected:
    void OnSize(UINT, int cx, int cy) override { sizes.emplace_back(cx, cy); }
};

TEST(WindowTest, AChildDialogLivesInsideItsPlaceholder) {
    HINSTANCE h = AfxGetInstanceHandle();
    AfxRegisterDialog(
        h, {IDD_PANEL, "panel", 400, 300, {{IDC_HOLE, DlgCtl::Custom, "", 20, 30, 300, 200}}});
    AfxRegisterDialog(h, {IDD_CHILD,
                          "",
                          100,
                          100,
                          {{IDC_CHILD_EDIT, DlgCtl::Edit, "", 0, 0, 80, 22}},
                          WS_CHILD | WS_VISIBLE});
    CDialog panel(IDD_PANEL);
    ASSERT_TRUE(panel.Create(IDD_PANEL));
    CWnd* hole = panel.GetDlgItem(IDC_HOLE);
    ASSERT_NE(hole, nullptr);
    ChildDialog child;
    ASSERT_TRUE(child.Create(IDD_CHILD, hole));
    EXPECT_EQ(child.GetParent(), hole);
    CRect r;
    hole->GetClientRect(&r);
    EXPECT_EQ(r, CRect(0, 0, 300, 200));
    child.MoveWindow(&r);
    CRect c;
    child.GetClientRect(&c);
    EXPECT_EQ(c, r);
    ASSERT_TRUE(AfxPumpMessagesUntil(
        [&] { return !child.sizes.empty() && child.sizes.back() == CSize(300, 200); }, 2000));
    EXPECT_TRUE(child.GetDlgItem(IDC_CHILD_EDIT) != nullptr);
    EXPECT_EQ(panel.GetDlgItem(IDC_CHILD_EDIT), nullptr); // items are direct children only
    // What the child hears when the panel goes is the destruction order's test.
    EXPECT_TRUE(panel.DestroyWindow());
    EXPECT_EQ(child.GetSafeHwnd(), nullptr);
}

enum : UINT { IDD_CONTROLS = 9600, IDC_LEVEL, IDC_SEARCH, IDC_NOTE, IDC_PASSWORD };
enum : UINT { IDC_R1 = 9610, IDC_R2, IDC_S1, IDC_S2 }; // two radio groups

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
        AfxRegisterDialog(
            AfxGetInstanceHandle(),
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

} // namespace
