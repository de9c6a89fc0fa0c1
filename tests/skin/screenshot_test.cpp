#include <skin/ZorSkin.h>

#include <afx/afxqt.h>
#include <afx/afxtest.h>

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QImage>

#include <gtest/gtest.h>

namespace {

enum : UINT {
    IDD_WRITE = 9800,
    IDC_CODE = 9801,
    IDC_HOLE = 9802,
    IDC_VALUE = 9803,
    IDC_NOTICE = 9804
};

class ValueItem : public CZorSkinPGridItem {
public:
    explicit ValueItem(const char* v) : CZorSkinPGridItem(v) {
        AddOption("0");
        AddOption("1");
    }
};

class WriteDialog : public CZorSkinPDialog {
public:
    WriteDialog() : CZorSkinPDialog(IDD_WRITE) {}
    CZorSkinPGridCtrl grid;
    CZorSkinPTextGauge gauge;

    BOOL OnInitDialog() override {
        CZorSkinPDialog::OnInitDialog();
        CRect r;
        CWnd* hole = GetDlgItem(IDC_HOLE);
        hole->GetWindowRect(&r);
        ScreenToClient(&r);
        grid.Create(r, this, 9805);
        grid.InsertColumn(0, "位号", 80);
        grid.InsertColumn(1, "描述", 120);
        grid.InsertColumn(2, "值", 180);
        grid.SetColumnEditable(0, FALSE);
        grid.SetColumnEditable(1, FALSE);
        grid.SetRowHeaderWidth(30);
        const char* const names[] = {"使能", "方向取反", "零速箝位", "超程保护"};
        for (int i = 0; i < 4; ++i) {
            const int row = grid.AddRow();
            CString code;
            code.Format("bit%d", i);
            grid.SetCellText(row, 0, code.GetString());
            grid.SetCellText(row, 1, names[i]);
            grid.SetCellItem(row, 2, new ValueItem(i % 2 ? "0" : "1"));
        }
        gauge.Create(GetDlgItem(IDC_NOTICE));
        gauge.SetText(
            "注：H00、H01组为厂家参数，请慎重修改，\n如需操作请先输入厂家密码（功能码H0241）！");
        return TRUE;
    }
};

} // namespace

TEST(SkinScreenshotTest, WriteDialogRendersToPng) {
    QApplication::setFont(QFont("WenQuanYi Micro Hei", 9));
    AfxRegisterDialog(AfxGetInstanceHandle(),
                      {IDD_WRITE,
                       "写入参数",
                       460,
                       330,
                       {{9810, DlgCtl::Static, "参数名称", 10, 12, 60, 22},
                        {IDC_CODE, DlgCtl::Edit, "H02-10", 74, 12, 120, 22, ES_READONLY},
                        {IDC_HOLE, DlgCtl::Custom, "", 10, 44, 440, 160},
                        {9811, DlgCtl::Static, "当前值", 10, 216, 60, 22},
                        {IDC_VALUE, DlgCtl::Edit, "00005", 74, 216, 120, 22},
                        {IDC_NOTICE, DlgCtl::Custom, "", 10, 246, 440, 40},
                        {IDOK, DlgCtl::Button, "确定", 280, 294, 80, 26, BS_DEFPUSHBUTTON},
                        {IDCANCEL, DlgCtl::Button, "取消", 370, 294, 80, 26}}});
    WriteDialog dlg;
    ASSERT_TRUE(dlg.Create(IDD_WRITE));
    const QString dir = QString(PARMIRA_BINARY_DIR) + "/screenshots";
    ASSERT_TRUE(QDir().mkpath(dir));
    const QString path = dir + "/skin_sample.png";
    ASSERT_TRUE(AfxTestGrabWindow(&dlg, path.toUtf8().constData()));
    const QImage img(path);
    ASSERT_EQ(img.size(), QSize(460, 330));
    // The skin's background, not the platform's default grey.
    EXPECT_EQ(img.pixelColor(455, 5), QColor(0xf4, 0xf6, 0xf9));
}
