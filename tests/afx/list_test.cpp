// The owner-data list: it asks only for the cells it paints, paints their colours, grid,
// images and text as the plain way would, keeps selection and checks, repaints only what
// changed, and hears its header and the wheel.
#include "../../platform/afx/src/list_text_p.h"

#include <afx/afxcmn.h>
#include <afx/afxqt.h>
#include <afx/afxtest.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QWheelEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace {

// An owner-data list that counts the cells it is asked for and records what it hears of
// its header and the wheel.
class CountingList : public CListCtrl {
public:
    long requests = 0;
    int minRow = 1 << 30;
    int maxRow = -1;
    std::set<int> columnsAsked;
    int redRow = -1;
    std::vector<int> resized; // columns whose header changed
    int wheels = 0;
    bool eatWheel = false;

    CString OnGetCellText(int row, int col) override {
        ++requests;
        minRow = std::min(minRow, row);
        maxRow = std::max(maxRow, row);
        columnsAsked.insert(col);
        CString s;
        s.Format("%d:%d", row, col);
        return s;
    }
    // Asked only once an image list is set.
    int OnGetItemImage(int row) override { return row % 2 ? -1 : 0; }
    BOOL OnGetCellColors(int row, int col, COLORREF& text, COLORREF& back) override {
        if (row != redRow || col != 1)
            return FALSE;
        text = RGB(0, 0, 255);
        back = RGB(255, 0, 0);
        return TRUE;
    }
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
    void ResetCounts() {
        requests = 0;
        minRow = 1 << 30;
        maxRow = -1;
        columnsAsked.clear();
    }
};

struct ListFixture : ::testing::Test {
    CWnd host;
    CountingList list;
    void SetUp() override {
        ASSERT_TRUE(
            host.Create(nullptr, "host", WS_POPUP | WS_VISIBLE, CRect(0, 0, 820, 480), nullptr, 0));
        ASSERT_TRUE(
            list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS,
                        CRect(0, 0, 800, 460), &host, 77));
        list.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_CHECKBOXES);
        for (int c = 0; c < 13; ++c)
            list.InsertColumn(c, "列", LVCFMT_LEFT, 90);
    }
};

} // namespace

TEST_F(ListFixture, MillionRowsAskOnlyForPaintedCells) {
    list.SetItemCount(1000000);
    EXPECT_EQ(list.GetItemCount(), 1000000);
    list.ResetCounts();
    const QImage shot = AfxWidgetFromHandle(list.GetSafeHwnd())->grab().toImage();
    ASSERT_FALSE(shot.isNull());
    const int perPage = list.GetCountPerPage();
    ASSERT_GT(perPage, 5);
    // Visible: about 800 / 90 columns and one page of rows (plus a partial row).
    EXPECT_GT(list.requests, 0);
    EXPECT_LE(list.requests, long(perPage + 1) * 9);
    EXPECT_EQ(list.minRow, 0);
    EXPECT_LE(list.maxRow, perPage);
    EXPECT_LE(*list.columnsAsked.rbegin(), 8);

    list.EnsureVisible(999999, FALSE);
    EXPECT_GE(list.GetTopIndex(), 999999 - perPage);
    list.ResetCounts();
    AfxWidgetFromHandle(list.GetSafeHwnd())->grab();
    EXPECT_GE(list.minRow, 999999 - perPage - 1);
    EXPECT_EQ(list.maxRow, 999999);
    EXPECT_LE(list.requests, long(perPage + 1) * 9);
    EXPECT_EQ(list.GetItemText(123456, 4), "123456:4");
}

TEST_F(ListFixture, ColourCallbackPaintsTheCell) {
    list.SetItemCount(20);
    list.redRow = 2;
    CRect cell;
    ASSERT_TRUE(list.GetSubItemRect(2, 1, LVIR_LABEL, cell));
    const QImage shot = AfxWidgetFromHandle(list.GetSafeHwnd())->grab().toImage();
    const QColor red(255, 0, 0), grid(0xd8, 0xdc, 0xe2);
    const int middle = cell.top + cell.Height() / 2;
    // Right part of the cell: past the short text, inside the grid lines; not the row below.
    EXPECT_EQ(shot.pixelColor(cell.right - 6, middle), red);
    EXPECT_NE(shot.pixelColor(cell.right - 6, middle + cell.Height()), red);
    // The grid: the last column and the last row of each cell, and nothing inside.
    EXPECT_EQ(shot.pixelColor(cell.right - 2, middle), red);
    EXPECT_EQ(shot.pixelColor(cell.right - 1, middle), grid);
    EXPECT_EQ(shot.pixelColor(cell.right - 6, cell.bottom - 2), red);
    EXPECT_EQ(shot.pixelColor(cell.right - 6, cell.bottom - 1), grid);
}

// The cell text's fast way against drawText in a rectangle of the elided text.
TEST(ListCellTextTest, FastWayPaintsWhatThePlainWayPaints) {
    QFont bold = QApplication::font();
    bold.setBold(true);
    bold.setPointSize(bold.pointSize() + 3);
    const QStringList texts = {"1000.00",
                               "H01-02",
                               "读写参数",
                               "A&B",
                               "  lead",
                               "trail  ",
                               "Mixed 混排 text",
                               "一个很长很长的参数名称需要省略显示",
                               "tab\tand\nline",
                               "i",
                               "WWWWWWWWWWWWWWWWWWWW",
                               "שלום 12",
                               ""};
    QImage images[3];
    for (QImage& image : images)
        image = QImage(400, 60, QImage::Format_ARGB32_Premultiplied);
    // Shared by all fonts, widths and alignments, as a list's is: a kept line must serve
    // another rectangle and never another font.
    afxi::CellTextCache cache;
    for (const QFont& font : {QApplication::font(), bold}) {
        for (const QString& text : texts) {
            const int natural = QFontMetrics(font, &images[0]).horizontalAdvance(text);
            // Roomy, exactly as wide as the text, one pixel short, and narrow.
            for (const int width : {natural + 40, natural, natural - 1, 30}) {
                for (const int align :
                     {int(Qt::AlignLeft), int(Qt::AlignRight), int(Qt::AlignHCenter)}) {
                    for (int way = 0; way < 3; ++way) {
                        // Rows of odd and even height above the text's.
                        const int extra = 6 + (width + align) % 2;
                        images[way].fill(Qt::white);
                        QPainter p(&images[way]);
                        p.setFont(font);
                        p.setPen(QColor(0, 0, 128));
                        // The metrics of the painter's own font, as a view's paint has them.
                        const QFontMetrics fm = p.fontMetrics();
                        const QRect rect(3, 2, std::max(width, 1), fm.height() + extra);
                        if (way == 2)
                            afxi::DrawCellTextPlain(&p, rect, align, text, fm);
                        else
                            afxi::DrawCellText(&p, rect, align, text, fm,
                                               way == 1 ? &cache : nullptr);
                    }
                    for (int way = 0; way < 2; ++way)
                        EXPECT_TRUE(images[way] == images[2])
                            << text.toStdString() << " width " << width << " align " << align
                            << " bold " << font.bold() << " cached " << way;
                }
            }
        }
    }
}

TEST_F(ListFixture, SelectionFocusMarkAndChecks) {
    list.SetItemCount(100);
    list.SetItemState(3, LVIS_SELECTED, LVIS_SELECTED);
    list.SetItemState(50, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(list.GetSelectedCount(), 2u);
    std::vector<int> selected;
    for (POSITION p = list.GetFirstSelectedItemPosition(); p;)
        selected.push_back(list.GetNextSelectedItem(p));
    EXPECT_EQ(selected, (std::vector<int>{3, 50}));
    EXPECT_EQ(list.GetNextItem(3, LVNI_SELECTED), 50);
    EXPECT_EQ(list.GetItemState(50, LVIS_SELECTED | LVIS_FOCUSED), LVIS_SELECTED | LVIS_FOCUSED);
    list.SetItemState(3, 0, LVIS_SELECTED);
    EXPECT_EQ(list.GetSelectedCount(), 1u);
    list.SetItemState(-1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(list.GetSelectedCount(), 100u);

    EXPECT_FALSE(list.GetCheck(7));
    list.SetCheck(7);
    EXPECT_TRUE(list.GetCheck(7));
    // A click on the box toggles it.
    CRect cell;
    ASSERT_TRUE(list.GetSubItemRect(8, 0, LVIR_LABEL, cell));
    LVHITTESTINFO hit{{cell.left + 8, cell.top + 4}, 0, 0, 0};
    EXPECT_EQ(list.SubItemHitTest(&hit), 8);
    EXPECT_EQ(hit.flags, LVHT_ONITEMSTATEICON);
    list.ClickCell(8, 0); // at the cell's centre: not on the box
    EXPECT_FALSE(list.GetCheck(8));
    EXPECT_EQ(list.GetSelectedCount(), 1u); // the click selected its row alone
    list.SetItemState(-1, LVIS_SELECTED, LVIS_SELECTED);
    // Shrinking the count drops the states of rows that went away.
    list.SetItemCount(5);
    EXPECT_EQ(list.GetSelectedCount(), 5u);
    EXPECT_FALSE(list.GetCheck(7));
}

TEST_F(ListFixture, SmallImagesAreDrawnInTheFirstColumn) {
    list.SetExtendedStyle(LVS_EX_FULLROWSELECT); // no check box in front of the image
    list.SetItemCount(10);
    std::vector<uint32_t> red(16 * 16, 0xFFFF0000u);
    AfxRegisterIconPixels(AfxGetInstanceHandle(), 2053, 16, 16, red.data());
    CImageList images;
    images.Create(16, 16, ILC_COLOR32, 1, 1);
    ASSERT_EQ(images.Add(AfxFindIcon(AfxGetInstanceHandle(), 2053)), 0);
    list.SetImageList(&images, LVSIL_SMALL);
    CRect first, second;
    ASSERT_TRUE(list.GetSubItemRect(0, 0, LVIR_LABEL, first));
    ASSERT_TRUE(list.GetSubItemRect(1, 0, LVIR_LABEL, second));
    const QImage shot = AfxWidgetFromHandle(list.GetSafeHwnd())->grab().toImage();
    EXPECT_EQ(shot.pixelColor(first.left + 8, first.CenterPoint().y), QColor(255, 0, 0));
    EXPECT_NE(shot.pixelColor(second.left + 8, second.CenterPoint().y), QColor(255, 0, 0));
}

// A live list paints again only what changed: a cell's colour, a row's check box.
TEST_F(ListFixture, OnlyChangedCellsAreInvalidated) {
    list.SetItemCount(100);
    list.redRow = 2;
    // Painted at once, as the screen would later: what the paint saw is what counts.
    auto painted = [&] {
        list.InvalidateChangedCells();
        AfxWidgetFromHandle(list.GetSafeHwnd())->grab();
    };
    painted();
    EXPECT_EQ(list.InvalidateChangedCells(), 0);
    list.redRow = 5;
    EXPECT_EQ(list.InvalidateChangedCells(), 2);
    painted();
    EXPECT_EQ(list.InvalidateChangedCells(), 0);
    // The whole row, as far as 800 px of 90 px columns show it.
    list.SetCheck(3, TRUE);
    EXPECT_EQ(list.InvalidateChangedCells(), 9);
    painted();
    EXPECT_EQ(list.InvalidateChangedCells(), 0);
}

TEST_F(ListFixture, HearsHeaderAndWheel) {
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
