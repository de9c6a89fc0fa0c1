// The skin's controls: a dialog whose anchored controls follow its edges, the menu button,
// the text gauge, the list's header sort, and the property grid whose value cells edit
// in place and re-join their rows.
#include <skin/ZorSkin.h>

#include <afx/afxqt.h>
#include <afx/afxtest.h>

#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QTableView>
#include <QTableWidget>
#include <QWidget>

#include <gtest/gtest.h>

#include <tuple>

namespace {

enum : UINT { IDD_PANEL = 9400, IDC_HOLE, IDC_TOTAL, IDC_NOTICE, IDC_FILTER, IDC_CENTER };
enum : UINT { IDM_FILTER = 9410, ID_SHOW_ALL, ID_SHOW_CHANGED };

class Panel : public CZorSkinPDialog {
public:
    Panel() : CZorSkinPDialog(IDD_PANEL) {}
    CZorSkinPMenuButton filter;
    CZorSkinPTextGauge gauge;
    std::vector<UINT> menuResults;

    BOOL OnInitDialog() override {
        CZorSkinPDialog::OnInitDialog();
        AddAnchor(IDC_HOLE, AnchorTopLeft, AnchorBottomRight);
        AddAnchor(IDC_TOTAL, AnchorBottomLeft);
        AddAnchor(IDC_NOTICE, AnchorBottomLeft, AnchorBottomRight);
        AddAnchor(IDC_FILTER, AnchorTopRight);
        AddAnchor(IDC_CENTER, CSize(50, 50));
        filter.SetMenu(IDM_FILTER);
        gauge.Create(GetDlgItem(IDC_NOTICE), 100, 20);
        return TRUE;
    }

protected:
    void DoDataExchange(CDataExchange* pDX) override { DDX_Control(pDX, IDC_FILTER, filter); }
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override {
        if (LOWORD(wParam) == IDC_FILTER && HIWORD(wParam) == BN_CLICKED) {
            menuResults.push_back(filter.GetMenuResult());
            return TRUE;
        }
        return CZorSkinPDialog::OnCommand(wParam, lParam);
    }
};

CRect RectOf(CWnd* parent, UINT id) {
    CRect r;
    parent->GetDlgItem(int(id))->GetWindowRect(&r);
    parent->ScreenToClient(&r);
    return r;
}

struct SkinDialogTest : ::testing::Test {
    void SetUp() override {
        HINSTANCE h = AfxGetInstanceHandle();
        AfxRegisterDialog(h, {IDD_PANEL,
                              "面板",
                              400,
                              300,
                              {{IDC_HOLE, DlgCtl::Custom, "", 10, 10, 380, 240},
                               {IDC_TOTAL, DlgCtl::Edit, "0", 10, 260, 80, 24, WS_DISABLED},
                               {IDC_NOTICE, DlgCtl::Custom, "", 100, 255, 290, 40},
                               {IDC_FILTER, DlgCtl::Button, "筛选", 300, 10, 80, 24},
                               {IDC_CENTER, DlgCtl::Static, "中", 190, 140, 20, 20}}});
        AfxRegisterMenu(h, {IDM_FILTER,
                            {{0,
                              "filter",
                              MF_POPUP,
                              {{ID_SHOW_ALL, "全部显示"}, {ID_SHOW_CHANGED, "仅显示已修改"}}}}});
        ASSERT_TRUE(panel.Create(IDD_PANEL));
    }
    Panel panel;
};

TEST_F(SkinDialogTest, AnchoredControlsFollowTheEdges) {
    panel.MoveWindow(0, 0, 500, 360);
    CRect client;
    panel.GetClientRect(&client);
    ASSERT_EQ(client.Size(), CSize(500, 360));
    ASSERT_TRUE(
        AfxPumpMessagesUntil([&] { return RectOf(&panel, IDC_HOLE).Width() == 480; }, 2000));
    EXPECT_EQ(RectOf(&panel, IDC_HOLE), CRect(10, 10, 490, 310));
    EXPECT_EQ(RectOf(&panel, IDC_TOTAL), CRect(10, 320, 90, 344));
    EXPECT_EQ(RectOf(&panel, IDC_NOTICE), CRect(100, 315, 490, 355));
    EXPECT_EQ(RectOf(&panel, IDC_FILTER), CRect(400, 10, 480, 34));
    EXPECT_EQ(RectOf(&panel, IDC_CENTER), CRect(240, 170, 260, 190));
}

TEST_F(SkinDialogTest, MenuButtonTellsTheEntryTaken) {
    CAfxRecordingResponder r;
    r.ChooseMenuCommand(ID_SHOW_CHANGED);
    panel.filter.Click();
    // Dismissed without a choice.
    panel.filter.Click();
    ASSERT_EQ(panel.menuResults.size(), 2u);
    EXPECT_EQ(panel.menuResults[0], UINT(ID_SHOW_CHANGED));
    EXPECT_EQ(panel.menuResults[1], 0u);
    ASSERT_EQ(r.Count(AfxPrompt::PopupMenu), 2u);
    EXPECT_EQ(r.prompts[0].menuItems.GetSize(), 2);
}

TEST_F(SkinDialogTest, TextGaugeDrawsItsTextInTheMiddle) {
    QWidget* notice = AfxWidgetFromHandle(panel.GetDlgItem(IDC_NOTICE)->GetSafeHwnd());
    auto inked = [&] {
        const QImage img = notice->grab().toImage();
        int dark = 0, left = img.width(), right = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (qGray(img.pixel(x, y)) < 160) {
                    ++dark;
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
        return std::make_tuple(dark, left, img.width() - 1 - right);
    };
    EXPECT_EQ(std::get<0>(inked()), 0);
    panel.gauge.SetText(
        "注：H00、H01组为厂家参数，请慎重修改，\n如需操作请先输入厂家密码（功能码H0241）！");
    const auto [dark, leftMargin, rightMargin] = inked();
    EXPECT_GT(dark, 50);
    EXPECT_LE(std::abs(leftMargin - rightMargin), 12); // centred
}

// Records the sorts a header click asks for instead of sorting.
class SortedList : public CZorSkinPListCtrl {
public:
    std::vector<std::pair<int, BOOL>> sorts;
    void SortColumn(int nColumn, BOOL bAscending) override {
        sorts.emplace_back(nColumn, bAscending);
    }
};

class ListHost : public CWnd {
public:
    std::vector<int> columnClicks;

protected:
    BOOL OnNotify(WPARAM, LPARAM lParam, LRESULT*) override {
        auto* nm = reinterpret_cast<NMLISTVIEW*>(lParam);
        if (nm->hdr.code == LVN_COLUMNCLICK)
            columnClicks.push_back(nm->iSubItem);
        return TRUE;
    }
};

// The module's lists are all owner-data: a header click only asks the list's own sort, and
// the parent hears of it whether the list sorts or not.
TEST(SkinListTest, HeaderClickAsksTheVirtualSortAndTellsTheParent) {
    ListHost host;
    ASSERT_TRUE(host.Create(nullptr, "host", WS_POPUP, CRect(0, 0, 300, 200), nullptr, 0));
    SortedList list;
    ASSERT_TRUE(list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA,
                            CRect(0, 0, 300, 200), &host, 3));
    list.ApplySkinStyle();
    list.InsertColumn(0, "功能码", LVCFMT_LEFT, 80);
    list.InsertColumn(1, "值", LVCFMT_RIGHT, 80);
    auto* view = qobject_cast<QTableView*>(AfxWidgetFromHandle(list.GetSafeHwnd()));
    ASSERT_NE(view, nullptr);
    for (int section : {1, 1, 0})
        emit view->horizontalHeader()->sectionClicked(section);
    // The same column again flips the order; another starts ascending.
    EXPECT_EQ(list.sorts, (std::vector<std::pair<int, BOOL>>{{1, TRUE}, {1, FALSE}, {0, TRUE}}));
    list.EnableHeaderSort(FALSE);
    emit view->horizontalHeader()->sectionClicked(1);
    EXPECT_EQ(list.sorts.size(), 3u);
    EXPECT_EQ(host.columnClicks, (std::vector<int>{1, 1, 0, 1}));
}

// A value cell that re-joins all rows of its grid, as a bit editor does.
class BitItem : public CZorSkinPGridItem {
public:
    BitItem(const char* v, unsigned* sum) : CZorSkinPGridItem(v), m_sum(sum) {
        AddOption("0");
        AddOption("1");
    }

protected:
    void OnValueChanged() override {
        CZorSkinPGridItem::OnValueChanged();
        unsigned s = 0;
        CZorSkinPGridCtrl* g = GetGrid();
        for (int r = 0; r < g->GetRowCount(); ++r)
            if (auto* item = g->GetCellItem(r, 2))
                s |= unsigned(item->GetValue() == "1") << g->GetRowData(r);
        *m_sum = s;
    }

private:
    unsigned* m_sum;
};

struct GridFixture : ::testing::Test {
    CWnd host;
    CZorSkinPGridCtrl grid;
    unsigned sum = 0;
    void SetUp() override {
        ASSERT_TRUE(
            host.Create(nullptr, "grid", WS_POPUP | WS_VISIBLE, CRect(0, 0, 420, 200), nullptr, 0));
        ASSERT_TRUE(grid.Create(CRect(0, 0, 420, 200), &host, 2091));
        grid.InsertColumn(0, "位号", 80);
        grid.InsertColumn(1, "描述", 120);
        grid.InsertColumn(2, "值", 180);
        grid.SetColumnEditable(0, FALSE);
        grid.SetColumnEditable(1, FALSE);
        grid.SetRowHeaderWidth(30);
        grid.SetSortMarker(FALSE);
        grid.SetZoomRange(0.1, 4.0);
        for (const auto& [bit, code, name] :
             {std::tuple{0u, "bit0", "使能"}, std::tuple{2u, "bit2", "方向"}}) {
            const int r = grid.AddRow();
            grid.SetCellText(r, 0, code);
            grid.SetCellText(r, 1, name);
            grid.SetCellItem(r, 2, new BitItem("1", &sum));
            grid.SetRowData(r, bit);
        }
    }
};

TEST_F(GridFixture, ItemsJoinOnEveryChange) {
    CZorSkinPGridItem* first = grid.GetCellItem(0, 2);
    ASSERT_NE(first, nullptr);
    first->ChooseOption(0);
    EXPECT_EQ(sum, 4u);
    EXPECT_EQ(grid.GetCellText(0, 2), "0");
    first->SetValue("1"); // quiet: no join
    EXPECT_EQ(sum, 4u);
    EXPECT_EQ(grid.GetCellText(0, 2), "1");
    first->ChooseOption(5); // no such option: nothing happens
    EXPECT_EQ(first->GetValue(), "1");
    grid.SetZoom(10); // the zoom stays in its range
    EXPECT_DOUBLE_EQ(grid.GetZoom(), 4.0);
    grid.SetZoom(0.01);
    EXPECT_DOUBLE_EQ(grid.GetZoom(), 0.1);
}

TEST_F(GridFixture, InPlaceListOpensOnlyInEditableColumns) {
    auto* table = qobject_cast<QTableWidget*>(AfxWidgetFromHandle(grid.GetSafeHwnd()));
    ASSERT_NE(table, nullptr);
    table->setCurrentCell(0, 1); // description: fixed
    EXPECT_EQ(table->findChild<QComboBox*>(), nullptr);
    table->setCurrentCell(1, 2);
    QComboBox* box = nullptr;
    ASSERT_TRUE(AfxPumpMessagesUntil(
        [&] { return (box = table->findChild<QComboBox*>()) != nullptr; }, 2000));
    EXPECT_EQ(box->count(), 2);
    EXPECT_EQ(box->currentIndex(), 1); // the cell's value
    emit box->activated(0);
    EXPECT_EQ(sum, 1u); // bit 0 still set, bit 2 cleared
    EXPECT_EQ(grid.GetCellText(1, 2), "0");
}

} // namespace
