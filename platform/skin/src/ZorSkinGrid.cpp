#include <skin/ZorSkin.h>

#include <afx/afxqt.h>

#include <QComboBox>
#include <QHeaderView>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTimer>

#include <map>

namespace {

// Opens an item cell's option list in place and hands the choice back to the item.
class ItemDelegate : public QStyledItemDelegate {
public:
    ItemDelegate(QObject* parent, CZorSkinPGridCtrl* grid)
        : QStyledItemDelegate(parent), m_grid(grid) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex& idx) const override {
        CZorSkinPGridItem* item = m_grid->GetCellItem(idx.row(), idx.column());
        if (!item || !item->IsEditable() || !m_grid->IsColumnEditable(idx.column()))
            return nullptr;
        auto* box = new QComboBox(parent);
        for (int i = 0; i < item->GetOptionCount(); ++i)
            box->addItem(AfxToQString(item->GetOption(i)));
        box->setCurrentIndex(item->FindOption(item->GetValue().GetString()));
        QPointer<QComboBox> guard(box);
        QTimer::singleShot(0, box, [guard] {
            if (guard)
                guard->showPopup();
        });
        QObject::connect(box, &QComboBox::activated, box, [this, box, item](int i) {
            if (i >= 0 && item->GetValue() != item->GetOption(i).GetString())
                item->ChooseOption(i);
            emit const_cast<ItemDelegate*>(this)->closeEditor(box);
        });
        return box;
    }
    void setEditorData(QWidget*, const QModelIndex&) const override {}
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}

private:
    CZorSkinPGridCtrl* m_grid;
};

} // namespace

struct CZorSkinPGridCtrl::Impl {
    // The widget may die after this object (windows are deleted later), so it is
    // watched rather than told about its end through a connection into this object.
    QPointer<QTableWidget> table;
    std::map<std::pair<int, int>, std::unique_ptr<CZorSkinPGridItem>> items;
    std::vector<bool> editable;
    std::vector<DWORD_PTR> rowData;
    double minZoom = 0.1;
    double maxZoom = 4.0;
    double zoom = 1.0;
    qreal basePointSize = 9;
};

CZorSkinPGridCtrl::CZorSkinPGridCtrl() : m_impl(std::make_unique<Impl>()) {}

CZorSkinPGridCtrl::~CZorSkinPGridCtrl() {
    DestroyWindow();
}

BOOL CZorSkinPGridCtrl::Create(const RECT& rect, CWnd* pParent, UINT nID, DWORD dwStyle) {
    QWidget* parent = pParent ? AfxWidgetFromHandle(pParent->GetSafeHwnd()) : nullptr;
    if (!parent || m_hWnd)
        return FALSE;
    auto* t = new QTableWidget(parent);
    const CRect r(rect);
    t->setGeometry(r.left, r.top, r.Width(), r.Height());
    t->setItemDelegate(new ItemDelegate(t, this));
    t->setSelectionMode(QAbstractItemView::SingleSelection);
    t->setEditTriggers(QAbstractItemView::CurrentChanged | QAbstractItemView::SelectedClicked |
                       QAbstractItemView::DoubleClicked);
    t->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    t->horizontalHeader()->setHighlightSections(false);
    t->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    t->setStyleSheet("QTableWidget { gridline-color: #d8dce2; }");
    t->verticalHeader()->setDefaultSectionSize(int(t->fontMetrics().height() * 1.6));
    m_impl->table = t;
    m_impl->basePointSize = t->font().pointSizeF() > 0 ? t->font().pointSizeF() : 9;
    if (!AfxAttachCustomWidget(this, t, nID, dwStyle)) {
        delete t;
        m_impl->table = nullptr;
        return FALSE;
    }
    return TRUE;
}

int CZorSkinPGridCtrl::InsertColumn(int nCol, const char* title, int width) {
    QTableWidget* t = m_impl->table;
    if (!t)
        return -1;
    const int at = std::clamp(nCol, 0, t->columnCount());
    t->insertColumn(at);
    t->setHorizontalHeaderItem(at, new QTableWidgetItem(AfxToQString(title)));
    t->setColumnWidth(at, width);
    m_impl->editable.insert(m_impl->editable.begin() + at, true);
    return at;
}

int CZorSkinPGridCtrl::GetColumnCount() const {
    return m_impl->table ? m_impl->table->columnCount() : 0;
}

int CZorSkinPGridCtrl::GetColumnWidth(int nCol) const {
    return m_impl->table ? m_impl->table->columnWidth(nCol) : 0;
}

void CZorSkinPGridCtrl::SetColumnEditable(int nCol, BOOL bEditable) {
    if (nCol >= 0 && size_t(nCol) < m_impl->editable.size())
        m_impl->editable[size_t(nCol)] = bEditable;
}

BOOL CZorSkinPGridCtrl::IsColumnEditable(int nCol) const {
    return nCol >= 0 && size_t(nCol) < m_impl->editable.size() && m_impl->editable[size_t(nCol)];
}

void CZorSkinPGridCtrl::SetRowHeaderWidth(int width) {
    if (QTableWidget* t = m_impl->table) {
        t->verticalHeader()->setVisible(width > 0);
        t->verticalHeader()->setFixedWidth(std::max(0, width));
    }
}

int CZorSkinPGridCtrl::GetRowHeaderWidth() const {
    QTableWidget* t = m_impl->table;
    return t && t->verticalHeader()->isVisible() ? t->verticalHeader()->width() : 0;
}

void CZorSkinPGridCtrl::ShowHeader(BOOL bShow) {
    if (m_impl->table)
        m_impl->table->horizontalHeader()->setVisible(bShow);
}

void CZorSkinPGridCtrl::SetSortMarker(BOOL bShow) {
    if (m_impl->table)
        m_impl->table->horizontalHeader()->setSortIndicatorShown(bShow);
}

void CZorSkinPGridCtrl::SetZoomRange(double minZoom, double maxZoom) {
    m_impl->minZoom = std::min(minZoom, maxZoom);
    m_impl->maxZoom = std::max(minZoom, maxZoom);
    SetZoom(m_impl->zoom);
}

void CZorSkinPGridCtrl::SetZoom(double zoom) {
    m_impl->zoom = std::clamp(zoom, m_impl->minZoom, m_impl->maxZoom);
    if (QTableWidget* t = m_impl->table) {
        QFont f = t->font();
        f.setPointSizeF(m_impl->basePointSize * m_impl->zoom);
        t->setFont(f);
        t->verticalHeader()->setDefaultSectionSize(int(t->fontMetrics().height() * 1.6));
    }
}

double CZorSkinPGridCtrl::GetZoom() const {
    return m_impl->zoom;
}

int CZorSkinPGridCtrl::AddRow() {
    QTableWidget* t = m_impl->table;
    if (!t)
        return -1;
    const int row = t->rowCount();
    t->insertRow(row);
    for (int c = 0; c < t->columnCount(); ++c) {
        auto* cell = new QTableWidgetItem;
        cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        t->setItem(row, c, cell);
    }
    m_impl->rowData.push_back(0);
    return row;
}

int CZorSkinPGridCtrl::GetRowCount() const {
    return m_impl->table ? m_impl->table->rowCount() : 0;
}

void CZorSkinPGridCtrl::SetCellText(int row, int col, const char* text) {
    QTableWidget* t = m_impl->table;
    if (!t || row < 0 || row >= t->rowCount() || col < 0 || col >= t->columnCount())
        return;
    if (QTableWidgetItem* cell = t->item(row, col))
        cell->setText(AfxToQString(text));
    const auto it = m_impl->items.find({row, col});
    if (it != m_impl->items.end() && it->second->m_value != text)
        it->second->m_value = text;
}

CString CZorSkinPGridCtrl::GetCellText(int row, int col) const {
    QTableWidget* t = m_impl->table;
    QTableWidgetItem* cell = t ? t->item(row, col) : nullptr;
    return cell ? AfxFromQString(cell->text()) : CString();
}

void CZorSkinPGridCtrl::SetCellItem(int row, int col, CZorSkinPGridItem* item) {
    QTableWidget* t = m_impl->table;
    if (!t || !item || row < 0 || row >= t->rowCount() || col < 0 || col >= t->columnCount()) {
        delete item;
        return;
    }
    item->m_grid = this;
    item->m_row = row;
    item->m_col = col;
    m_impl->items[{row, col}].reset(item);
    if (QTableWidgetItem* cell = t->item(row, col)) {
        cell->setText(AfxToQString(item->GetValue()));
        cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
    }
}

CZorSkinPGridItem* CZorSkinPGridCtrl::GetCellItem(int row, int col) const {
    const auto it = m_impl->items.find({row, col});
    return it == m_impl->items.end() ? nullptr : it->second.get();
}

void CZorSkinPGridCtrl::SetRowData(int row, DWORD_PTR data) {
    if (row >= 0 && size_t(row) < m_impl->rowData.size())
        m_impl->rowData[size_t(row)] = data;
}

DWORD_PTR CZorSkinPGridCtrl::GetRowData(int row) const {
    return row >= 0 && size_t(row) < m_impl->rowData.size() ? m_impl->rowData[size_t(row)] : 0;
}

void CZorSkinPGridCtrl::ItemChanged(CZorSkinPGridItem* item) {
    if (item && item->m_grid == this)
        SetCellText(item->m_row, item->m_col, item->m_value.GetString());
}
