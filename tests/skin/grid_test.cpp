#include <skin/ZorSkin.h>

#include <afx/afxqt.h>
#include <afx/afxtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFont>
#include <QTableWidget>

#include <gtest/gtest.h>

namespace {

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
        const unsigned bits[] = {0, 2};
        const char* const names[] = {"使能", "方向"};
        for (int i = 0; i < 2; ++i) {
            const int r = grid.AddRow();
            CString code;
            code.Format("bit%u", bits[i]);
            grid.SetCellText(r, 0, code.GetString());
            grid.SetCellText(r, 1, names[i]);
            grid.SetCellItem(r, 2, new BitItem("1", &sum));
            grid.SetRowData(r, bits[i]);
        }
    }
};

} // namespace

TEST_F(GridFixture, ItemsJoinOnEveryChange) {
    EXPECT_EQ(grid.GetCellText(1, 2), "1");
    CZorSkinPGridItem* first = grid.GetCellItem(0, 2);
    ASSERT_NE(first, nullptr);
    first->ChooseOption(0);
    EXPECT_EQ(sum, 4u);
    EXPECT_EQ(grid.GetCellText(0, 2), "0");
    grid.GetCellItem(1, 2)->ChooseOption(0);
    EXPECT_EQ(sum, 0u);
    first->SetValue("1"); // quiet: no join
    EXPECT_EQ(sum, 0u);
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
