#include <afx/afxcmn.h>
#include <afx/afxtest.h>

#include <gtest/gtest.h>

namespace {

enum : UINT {
    IDD_FORM = 9200,
    IDC_NAME = 9201,
    IDD_PANEL = 9210,
    IDC_HOLE = 9211,
    IDD_CHILD = 9212,
    IDC_CHILD_EDIT = 9213,
};

void RegisterForm() {
    AfxRegisterDialog(AfxGetInstanceHandle(),
                      {IDD_FORM,
                       "写入参数",
                       320,
                       200,
                       {{IDC_NAME, DlgCtl::Edit, "", 10, 10, 150, 22},
                        {IDOK, DlgCtl::Button, "确定", 130, 160, 80, 26, BS_DEFPUSHBUTTON}}});
}

} // namespace

TEST(DialogTest, WithoutDriverOffscreenAModalRunNeverBlocks) {
    RegisterForm();
    CDialog dlg(IDD_FORM);
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
