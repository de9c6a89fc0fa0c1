#include <afx/afxcmn.h>
#include <afx/afxtest.h>

#include <gtest/gtest.h>

namespace {

enum : UINT {
    IDD_FORM = 9200,
    IDC_NAME = 9201,
    IDC_COUNT = 9202,
    IDC_ENABLE = 9203,
    IDC_MODE_A = 9204,
    IDC_MODE_B = 9205,
    IDC_MODE_C = 9206,
    IDC_LEVEL = 9207,
    IDC_LOCKED = 9208,
    IDC_HIDDEN = 9209,
    IDD_PANEL = 9210,
    IDC_HOLE = 9211,
    IDD_CHILD = 9212,
    IDC_CHILD_EDIT = 9213,
};

void RegisterForm() {
    AfxRegisterDialog(
        AfxGetInstanceHandle(),
        {IDD_FORM,
         "写入参数",
         320,
         200,
         {{IDC_NAME, DlgCtl::Edit, "", 10, 10, 150, 22},
          {IDC_COUNT, DlgCtl::Edit, "", 10, 40, 150, 22},
          {IDC_ENABLE, DlgCtl::Check, "启用", 10, 70, 100, 20},
          {IDC_MODE_A, DlgCtl::Radio, "A", 10, 95, 40, 20, WS_GROUP},
          {IDC_MODE_B, DlgCtl::Radio, "B", 60, 95, 40, 20},
          {IDC_MODE_C, DlgCtl::Radio, "C", 110, 95, 40, 20},
          {IDC_LEVEL, DlgCtl::ComboDropList, "", 170, 10, 120, 24},
          {IDC_LOCKED, DlgCtl::Edit, "固定", 170, 40, 120, 22, ES_READONLY | WS_DISABLED},
          {IDC_HIDDEN, DlgCtl::Static, "隐藏", 170, 70, 120, 20, 0, true},
          {IDOK, DlgCtl::Button, "确定", 130, 160, 80, 26, BS_DEFPUSHBUTTON},
          {IDCANCEL, DlgCtl::Button, "取消", 220, 160, 80, 26}}});
}

class FormDialog : public CDialog {
public:
    FormDialog() : CDialog(IDD_FORM) {}
    CString name = "初始";
    int count = 3;
    int enable = 0;
    int mode = 2;
    int level = -1;
    CComboBox levelBox;
    std::vector<std::string> calls;

    BOOL OnInitDialog() override {
        calls.push_back("init");
        CDialog::OnInitDialog();
        levelBox.AddString("用户");
        levelBox.AddString("厂家");
        levelBox.SetCurSel(level);
        return TRUE;
    }
    void OnOK() override {
        calls.push_back("ok");
        CDialog::OnOK();
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        DDX_Control(pDX, IDC_LEVEL, levelBox);
        DDX_Text(pDX, IDC_NAME, name);
        DDX_Text(pDX, IDC_COUNT, count);
        DDX_Check(pDX, IDC_ENABLE, enable);
        DDX_Radio(pDX, IDC_MODE_A, mode);
        DDX_CBIndex(pDX, IDC_LEVEL, level);
    }
};

} // namespace

TEST(DialogTest, ModalRunDrivenByTheTestReturnsItsResult) {
    RegisterForm();
    FormDialog dlg;
    CAfxModalDriver driver([](CDialog& d) {
        auto& f = static_cast<FormDialog&>(d);
        // What OnInitDialog put there, from the members.
        EXPECT_EQ(f.GetDlgItem(IDC_NAME)->GetWindowTextString(), "初始");
        EXPECT_EQ(f.IsDlgButtonChecked(IDC_MODE_C), 1u);
        EXPECT_FALSE(f.GetDlgItem(IDC_LOCKED)->IsWindowEnabled());
        EXPECT_FALSE(f.GetDlgItem(IDC_HIDDEN)->IsWindowVisible());
        EXPECT_TRUE(f.GetDlgItem(IDC_NAME)->IsWindowVisible());
        AfxTestTypeText(f.GetDlgItem(IDC_NAME), "新名称");
        AfxTestTypeText(f.GetDlgItem(IDC_COUNT), " 42 ");
        static_cast<CButton*>(f.GetDlgItem(IDC_ENABLE))->Click();
        static_cast<CButton*>(f.GetDlgItem(IDC_MODE_A))->Click();
        f.levelBox.ChooseEntry(1);
        static_cast<CButton*>(f.GetDlgItem(IDOK))->Click();
    });
    EXPECT_EQ(dlg.DoModal(), IDOK);
    EXPECT_EQ(driver.runs, 1);
    EXPECT_EQ(dlg.calls, (std::vector<std::string>{"init", "ok"}));
    EXPECT_EQ(dlg.name, "新名称");
    EXPECT_EQ(dlg.count, 42);
    EXPECT_EQ(dlg.enable, 1);
    EXPECT_EQ(dlg.mode, 0); // clicking A unchecked C in the same group
    EXPECT_EQ(dlg.level, 1);
    EXPECT_EQ(dlg.GetSafeHwnd(), nullptr); // the window is gone after the run
}

TEST(DialogTest, CancelAndFailedValidationKeepMembers) {
    RegisterForm();
    CAfxRecordingResponder prompts;
    FormDialog dlg;
    CAfxModalDriver driver([](CDialog& d) {
        AfxTestTypeText(d.GetDlgItem(IDC_COUNT), "abc");
        d.OnOK(); // validation fails: a message, the dialog stays
        EXPECT_TRUE(d.IsWindowVisible());
        AfxTestTypeText(d.GetDlgItem(IDC_NAME), "丢弃");
        d.EndDialog(IDCANCEL);
    });
    EXPECT_EQ(dlg.DoModal(), IDCANCEL);
    EXPECT_EQ(dlg.name, "初始");
    EXPECT_EQ(dlg.count, 3);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
}

TEST(DialogTest, WithoutDriverOffscreenAModalRunNeverBlocks) {
    RegisterForm();
    FormDialog dlg;
    EXPECT_EQ(dlg.DoModal(), IDCANCEL);
    CDialog none(424242);
    EXPECT_EQ(none.DoModal(), -1);
}

namespace {

class ChildDialog : public CDialog {
public:
    ChildDialog() : CDialog(IDD_CHILD) {}
    std::vector<CSize> sizes;
    int* destroyedCount = nullptr;
    bool* deletedFlag = nullptr;

protected:
    void OnSize(UINT, int cx, int cy) override { sizes.emplace_back(cx, cy); }
    void OnDestroy() override {
        if (destroyedCount)
            ++*destroyedCount;
    }
    void PostNcDestroy() override {
        if (deletedFlag) {
            *deletedFlag = true;
            delete this;
        }
    }
};

} // namespace

TEST(DialogTest, ChildDialogLivesInsideItsPlaceholder) {
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
    int destroyed = 0;
    bool deleted = false;
    auto* child = new ChildDialog;
    child->destroyedCount = &destroyed;
    child->deletedFlag = &deleted;
    ASSERT_TRUE(child->Create(IDD_CHILD, hole));
    EXPECT_EQ(child->GetParent(), hole);
    CRect r;
    hole->GetClientRect(&r);
    EXPECT_EQ(r, CRect(0, 0, 300, 200));
    child->MoveWindow(&r);
    CRect c;
    child->GetClientRect(&c);
    EXPECT_EQ(c, r);
    ASSERT_TRUE(AfxPumpMessagesUntil(
        [&] { return !child->sizes.empty() && child->sizes.back() == CSize(300, 200); }, 2000));
    EXPECT_TRUE(child->GetDlgItem(IDC_CHILD_EDIT) != nullptr);
    EXPECT_EQ(panel.GetDlgItem(IDC_CHILD_EDIT), nullptr); // items are direct children only
    // Destroying the panel destroys the child first-hand: OnDestroy, then its own delete.
    EXPECT_TRUE(panel.DestroyWindow());
    EXPECT_EQ(destroyed, 1);
    EXPECT_TRUE(deleted);
}
