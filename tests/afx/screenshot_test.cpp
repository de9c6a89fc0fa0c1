#include <afx/afxcmn.h>
#include <afx/afxtest.h>

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QImage>

#include <gtest/gtest.h>

namespace {

enum : UINT {
    IDD_SAMPLE = 9300,
    IDC_TREE = 9301,
    IDC_LIST = 9302,
    IDC_TOTAL = 9303,
    IDC_LEVEL = 9304
};

class SampleList : public CListCtrl {
public:
    CString OnGetCellText(int row, int col) override {
        static const char* const names[] = {"电机编号", "额定电压", "额定功率", "额定电流",
                                            "额定转矩"};
        CString s;
        switch (col) {
        case 0:
            s.Format("H00-%02d", row);
            break;
        case 1:
            s = names[row % 5];
            break;
        case 2:
            s.Format("%d", 1000 + row * 7);
            break;
        case 3:
            s = row % 3 ? "V" : "A";
            break;
        default:
            s = row % 4 ? "停机设定" : "立即生效";
        }
        return s;
    }
    BOOL OnGetCellColors(int row, int col, COLORREF& text, COLORREF& back) override {
        if (col == 2 && row % 4 == 1) {
            text = RGB(0, 0, 255); // differs from the factory value
            back = RGB(255, 255, 255);
            return TRUE;
        }
        return FALSE;
    }
};

class SampleDialog : public CDialog {
public:
    SampleDialog() : CDialog(IDD_SAMPLE) {}
    CTreeCtrl tree;
    SampleList list;
    CComboBox level;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        DDX_Control(pDX, IDC_TREE, tree);
        DDX_Control(pDX, IDC_LIST, list);
        DDX_Control(pDX, IDC_LEVEL, level);
    }
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        const HTREEITEM root = tree.InsertItem("伺服驱动器 [轴1]");
        const HTREEITEM all = tree.InsertItem("所有参数", root);
        tree.InsertItem("H00 伺服电机参数", all);
        tree.InsertItem("H01 驱动器参数", all);
        tree.InsertItem("H02 基本控制参数", all);
        tree.InsertItem("自定义", root);
        tree.InsertItem("已修改参数", root);
        tree.Expand(root, TVE_EXPAND);
        tree.Expand(all, TVE_EXPAND);
        tree.SetItemHeight(20);
        tree.SelectItem(all);
        list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_CHECKBOXES);
        const char* const cols[] = {"功能码", "名称", "设定值", "单位", "生效方式"};
        const int widths[] = {90, 110, 80, 50, 90};
        for (int i = 0; i < 5; ++i)
            list.InsertColumn(i, cols[i], i == 2 ? LVCFMT_RIGHT : LVCFMT_LEFT, widths[i]);
        list.SetItemCount(1000000);
        list.SetItemState(2, LVIS_SELECTED, LVIS_SELECTED);
        list.SetCheck(0);
        list.SetCheck(3);
        level.AddString("用户");
        level.AddString("厂家");
        level.SetCurSel(0);
        return TRUE;
    }
};

} // namespace

TEST(ScreenshotTest, SampleDialogRendersToPng) {
    QApplication::setFont(QFont("WenQuanYi Micro Hei", 9));
    AfxRegisterDialog(AfxGetInstanceHandle(),
                      {IDD_SAMPLE,
                       "参数",
                       740,
                       430,
                       {{IDC_TREE, DlgCtl::Tree, "", 10, 10, 200, 370,
                         TVS_HASLINES | TVS_LINESATROOT | TVS_HASBUTTONS},
                        {IDC_LIST, DlgCtl::List, "", 220, 44, 510, 336,
                         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
                        {9305, DlgCtl::Button, "上传并保存", 220, 10, 90, 26},
                        {9306, DlgCtl::Button, "比较", 316, 10, 60, 26},
                        {9307, DlgCtl::Static, "访问权限", 520, 10, 60, 26},
                        {IDC_LEVEL, DlgCtl::ComboDropList, "", 580, 10, 150, 26},
                        {9308, DlgCtl::Static, "变量总数:", 10, 394, 70, 24},
                        {IDC_TOTAL, DlgCtl::Edit, "1000000", 80, 394, 90, 24, WS_DISABLED},
                        {9309, DlgCtl::Check, "应用到项目中所有模块", 220, 394, 200, 24},
                        {IDOK, DlgCtl::Button, "确定", 560, 394, 80, 26, BS_DEFPUSHBUTTON},
                        {IDCANCEL, DlgCtl::Button, "取消", 650, 394, 80, 26}}});
    SampleDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_SAMPLE));
    const QString dir = QString(PARMIRA_BINARY_DIR) + "/screenshots";
    ASSERT_TRUE(QDir().mkpath(dir));
    const QString path = dir + "/afx_sample.png";
    ASSERT_TRUE(AfxTestGrabWindow(&dlg, path.toUtf8().constData()));
    const QImage img(path);
    ASSERT_EQ(img.size(), QSize(740, 430));
    // Not blank: the list's text and the tree's lines leave many distinct colours.
    QSet<QRgb> colours;
    for (int y = 0; y < img.height(); y += 3)
        for (int x = 0; x < img.width(); x += 3)
            colours.insert(img.pixel(x, y));
    EXPECT_GT(colours.size(), 20);
}
