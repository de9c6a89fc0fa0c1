// Internal: the report list widget. Stores columns, the item count, item states and, for
// lists that are not owner-data, the items' texts; asks the owning CListCtrl for cells.
#pragma once

#include "controls_p.h"
#include "list_text_p.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QTableView>

#include <unordered_map>
#include <vector>

namespace afxi {

class AfxListView;

class AfxListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit AfxListModel(AfxListView* view);
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation o, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    using QAbstractTableModel::beginInsertColumns;
    using QAbstractTableModel::beginInsertRows;
    using QAbstractTableModel::beginRemoveColumns;
    using QAbstractTableModel::beginRemoveRows;
    using QAbstractTableModel::endInsertColumns;
    using QAbstractTableModel::endInsertRows;
    using QAbstractTableModel::endRemoveColumns;
    using QAbstractTableModel::endRemoveRows;

private:
    AfxListView* m_view;
};

class AfxListView : public QTableView {
    Q_OBJECT
public:
    AfxListView(DWORD style, QWidget* parent);

    struct Column {
        QString text;
        int fmt = LVCFMT_LEFT;
    };
    struct Row {
        std::vector<CString> texts;
        DWORD_PTR data = 0;
        int image = -1;
    };
    // What one cell showed when it was last painted whole.
    struct PaintedCell {
        CString text;
        COLORREF fg = CLR_DEFAULT;
        COLORREF bg = CLR_DEFAULT;
        bool valid = false;
    };
    struct PaintedRow {
        UINT stateImage = 0;
        int image = -1;
        std::vector<PaintedCell> cells;
    };
    static constexpr int kCheckWidth = 18;

    CString CellText(int row, int col);
    bool CellColors(int row, int col, COLORREF& text, COLORREF& back);
    int ItemImage(int row);
    CListCtrl* Owner() const;
    QPoint ViewportOffset() const { return viewport()->geometry().topLeft(); }
    int RowHeight() const { return verticalHeader()->defaultSectionSize(); }
    void SetStateImage(int row, UINT index);
    UINT StateImage(int row) const;
    int NextSelected(int from) const;
    void NotifyClick(UINT code, QPoint viewportPos);
    // The delegate notes what it painted; `whole` is false when the paint was clipped to
    // part of the cell, which then counts as not painted.
    void NotePainted(int row, int col, const CString& text, COLORREF fg, COLORREF bg, bool whole);
    // Asks the owner for every cell on screen and schedules a repaint of those whose text,
    // colours or row images differ from what was painted. Returns the cells scheduled.
    int UpdateChangedCells();

    AfxListModel* m_model;
    bool m_ownerData;
    int m_count = 0;
    std::vector<Column> m_columns;
    std::vector<Row> m_rows;
    std::unordered_map<int, UINT> m_stateImages;
    int m_selectionMark = -1;
    DWORD m_exStyle = 0;
    CImageList* m_images[3] = {nullptr, nullptr, nullptr};
    HWND m_header = nullptr;
    HWND m_self = nullptr;
    // By row, for the rows on screen at the last paint or comparison.
    std::unordered_map<int, PaintedRow> m_painted;
    bool m_comparing = false;
    CellTextCache m_textCache;

private:
    void PaintGrid(const QRegion& region);

    CListCtrl* m_paintOwner = nullptr;

protected:
    void paintEvent(QPaintEvent* e) override;
    void changeEvent(QEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
};

} // namespace afxi
