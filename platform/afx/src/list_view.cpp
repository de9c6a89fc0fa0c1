// The report list widget behind CListCtrl: its model, the delegate that paints a cell
// from one text and one colour request, and the notifications it sends its owner.
#include "list_p.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPaintEngine>
#include <QPainter>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyledItemDelegate>

namespace afxi {
namespace {

QColor ToQColor(COLORREF c) {
    return QColor(GetRValue(c), GetGValue(c), GetBValue(c));
}

constexpr int kCheckWidth = AfxListView::kCheckWidth;
constexpr int kTextPadding = 4;
constexpr QRgb kGridColor = 0xffd8dce2;

// Lets the table view lay its cells out for a grid but draw no grid lines: a transparent
// pen costs nothing, and the list fills the same pixels itself (see PaintGrid).
class ListStyle : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_Table_GridLineColor)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
    // The view asks for each cell's row panel. These styles paint it only for a selected
    // or alternate row, and they work out their frame colours first on every call.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* p,
                       const QWidget* widget) const override {
        if (element == PE_PanelItemViewRow && m_plainRowPanel)
            if (const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option))
                if (!(item->state & State_Selected) &&
                    !(item->features & QStyleOptionViewItem::Alternate))
                    return;
        QProxyStyle::drawPrimitive(element, option, p, widget);
    }
    void SetBaseName(const QString& name) {
        m_plainRowPanel = name.compare("fusion", Qt::CaseInsensitive) == 0 ||
                          name.compare("windows", Qt::CaseInsensitive) == 0;
    }

private:
    bool m_plainRowPanel = false;
};

// One for all lists, over a style of the application's kind (a proxy owns its base).
QStyle* SharedListStyle() {
    static QPointer<QStyle> style;
    if (style.isNull()) {
        QStyle* base = QStyleFactory::create(QApplication::style()->name());
        auto* list = base != nullptr ? new ListStyle(base) : new ListStyle();
        list->SetBaseName(list->baseStyle()->name());
        list->setParent(qApp);
        style = list;
    }
    return style;
}

// Whether the paint in progress reaches all of `r` that the viewport shows, or only part.
bool PaintsWhole(QPainter* p, const QRect& r) {
    const QPaintEngine* engine = p->paintEngine();
    const QRegion clip = engine != nullptr ? engine->systemClip() : QRegion();
    if (clip.isEmpty())
        return true;
    return QRegion(p->deviceTransform().mapRect(r)).subtracted(clip).isEmpty();
}

// Paints each cell from one text and one colour request, nothing else.
class ListDelegate : public QStyledItemDelegate {
public:
    explicit ListDelegate(AfxListView* view) : QStyledItemDelegate(view), m_view(view) {}

    void paint(QPainter* p, const QStyleOptionViewItem& opt,
               const QModelIndex& idx) const override {
        const int row = idx.row();
        const int col = idx.column();
        const CString text = m_view->CellText(row, col);
        COLORREF fg = CLR_DEFAULT;
        COLORREF bg = CLR_DEFAULT;
        m_view->CellColors(row, col, fg, bg);
        m_view->NotePainted(row, col, text, fg, bg,
                            PaintsWhole(p, opt.rect & m_view->viewport()->rect()));
        const bool selected = opt.state & QStyle::State_Selected;
        const bool fullRow = m_view->m_exStyle & LVS_EX_FULLROWSELECT;
        QRect r = opt.rect;
        const QPalette& pal = m_view->palette();
        QColor textColor = fg != CLR_DEFAULT ? ToQColor(fg) : pal.color(QPalette::Text);
        if (bg != CLR_DEFAULT)
            p->fillRect(r, ToQColor(bg));
        QRect textRect = r.adjusted(kTextPadding, 0, -kTextPadding, 0);
        const bool checkBox = col == 0 && (m_view->m_exStyle & LVS_EX_CHECKBOXES);
        if (checkBox)
            textRect.setLeft(r.left() + kCheckWidth + 2);
        QPixmap pm;
        QPoint imageAt;
        if (col == 0) {
            pm = ImageListPixmap(m_view->m_images[LVSIL_SMALL], m_view->ItemImage(row));
            if (!pm.isNull()) {
                imageAt = QPoint(textRect.left(), r.top() + (r.height() - pm.height()) / 2);
                textRect.setLeft(textRect.left() + pm.width() + 3);
            }
        }
        // The highlight goes first: the check box and the image of a selected row stay
        // visible over it.
        if (selected && (fullRow || col == 0)) {
            const QRect sel = col == 0 && !fullRow ? textRect.adjusted(-2, 0, 2, 0) : r;
            const bool active =
                m_view->hasFocus() ||
                (m_view->Owner() && (m_view->Owner()->GetStyle() & LVS_SHOWSELALWAYS));
            p->fillRect(sel, active
                                 ? pal.color(QPalette::Active, QPalette::Highlight)
                                 : pal.color(QPalette::Inactive, QPalette::Highlight).lighter(130));
            textColor = pal.color(active ? QPalette::Active : QPalette::Inactive,
                                  QPalette::HighlightedText);
        }
        if (checkBox) {
            QStyleOptionButton box;
            box.rect = QRect(r.left() + 3, r.top() + (r.height() - 13) / 2, 13, 13);
            box.state = QStyle::State_Enabled |
                        (m_view->StateImage(row) == 2 ? QStyle::State_On : QStyle::State_Off);
            m_view->style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, p, m_view);
        }
        if (!pm.isNull())
            p->drawPixmap(imageAt, pm);
        int align = Qt::AlignLeft;
        if (size_t(col) < m_view->m_columns.size()) {
            const int fmt = m_view->m_columns[size_t(col)].fmt & 3;
            align = fmt == LVCFMT_RIGHT ? Qt::AlignRight
                                        : (fmt == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft);
        }
        p->setPen(textColor);
        DrawCellText(p, textRect, align, Q(text), opt.fontMetrics, &m_view->m_textCache);
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return QSize(60, m_view->RowHeight());
    }

private:
    AfxListView* m_view;
};

} // namespace

AfxListModel::AfxListModel(AfxListView* view) : QAbstractTableModel(view), m_view(view) {}

int AfxListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_view->m_count;
}

int AfxListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_view->m_columns.size());
}

QVariant AfxListModel::data(const QModelIndex& index, int role) const {
    // Painting goes through the delegate; this serves accessibility and the like.
    if (role == Qt::DisplayRole && index.isValid())
        return Q(m_view->CellText(index.row(), index.column()));
    return QVariant();
}

QVariant AfxListModel::headerData(int section, Qt::Orientation o, int role) const {
    if (o != Qt::Horizontal || size_t(section) >= m_view->m_columns.size())
        return QVariant();
    if (role == Qt::DisplayRole)
        return m_view->m_columns[size_t(section)].text;
    if (role == Qt::TextAlignmentRole) {
        const int fmt = m_view->m_columns[size_t(section)].fmt & 3;
        return int((fmt == LVCFMT_RIGHT
                        ? Qt::AlignRight
                        : (fmt == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft)) |
                   Qt::AlignVCenter);
    }
    return QVariant();
}

Qt::ItemFlags AfxListModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

AfxListView::AfxListView(DWORD style, QWidget* parent)
    : QTableView(parent), m_model(new AfxListModel(this)), m_ownerData(style & LVS_OWNERDATA) {
    setModel(m_model);
    setItemDelegate(new ListDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode((style & LVS_SINGLESEL) ? QAbstractItemView::SingleSelection
                                             : QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false);
    setFocusPolicy(Qt::StrongFocus);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(12);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setSectionsClickable(!(style & LVS_NOSORTHEADER));
    if (style & LVS_NOCOLUMNHEADER)
        horizontalHeader()->hide();
    setStyle(SharedListStyle());
}

void AfxListView::paintEvent(QPaintEvent* e) {
    // Every cell asks its owner for texts and colours: the owner is found once a paint.
    m_paintOwner = Owner();
    m_textCache.SetResolution(viewport()->logicalDpiY());
    QTableView::paintEvent(e);
    m_paintOwner = nullptr;
    if (showGrid())
        PaintGrid(e->region());
}

void AfxListView::changeEvent(QEvent* e) {
    // The kept lines are those of the old font or the old language's texts.
    if (e->type() == QEvent::FontChange || e->type() == QEvent::LanguageChange ||
        e->type() == QEvent::StyleChange)
        m_textCache.Clear();
    QTableView::changeEvent(e);
}

void AfxListView::PaintGrid(const QRegion& region) {
    // The lines the table view would draw with a one-pixel pen: under each row and right
    // of each column, within the painted area and not past the last row or column.
    QHeaderView* rows = verticalHeader();
    QHeaderView* columns = horizontalHeader();
    const int lastY = rows->length() - rows->offset() - 1;
    const int lastX = columns->length() - columns->offset() - 1;
    QPainter p(viewport());
    const QColor color = QColor::fromRgba(kGridColor);
    for (QRect area : region) {
        area.setBottom(std::min(area.bottom(), lastY));
        area.setRight(std::min(area.right(), lastX));
        if (!area.isValid())
            continue;
        int left = columns->visualIndexAt(area.left());
        int right = columns->visualIndexAt(area.right());
        if (left == -1)
            left = 0;
        if (right == -1)
            right = columns->count() - 1;
        int top = rows->visualIndexAt(area.top());
        int bottom = rows->visualIndexAt(area.bottom());
        if (bottom == -1)
            bottom = rows->count() - 1;
        if (top == -1 || top > bottom)
            continue;
        for (int visual = top; visual <= bottom; ++visual) {
            const int row = rows->logicalIndex(visual);
            if (rows->isSectionHidden(row))
                continue;
            const int y = rowViewportPosition(row) + rowHeight(row) - 1;
            p.fillRect(QRect(area.left(), y, area.width(), 1), color);
        }
        for (int visual = left; visual <= right; ++visual) {
            const int col = columns->logicalIndex(visual);
            if (columns->isSectionHidden(col))
                continue;
            const int x = columnViewportPosition(col) + columnWidth(col) - 1;
            p.fillRect(QRect(x, area.top(), 1, area.height()), color);
        }
    }
}

CListCtrl* AfxListView::Owner() const {
    if (m_paintOwner != nullptr)
        return m_paintOwner;
    WindowData* d = Lookup(m_self);
    return d ? dynamic_cast<CListCtrl*>(d->wnd ? d->wnd : d->standIn.get()) : nullptr;
}

CString AfxListView::CellText(int row, int col) {
    if (CListCtrl* owner = Owner())
        return owner->OnGetCellText(row, col);
    if (!m_ownerData && size_t(row) < m_rows.size() &&
        size_t(col) < m_rows[size_t(row)].texts.size())
        return m_rows[size_t(row)].texts[size_t(col)];
    return CString();
}

int AfxListView::ItemImage(int row) {
    if (!m_images[LVSIL_SMALL])
        return -1;
    CListCtrl* owner = Owner();
    return owner ? owner->OnGetItemImage(row) : -1;
}

bool AfxListView::CellColors(int row, int col, COLORREF& text, COLORREF& back) {
    CListCtrl* owner = Owner();
    return owner && owner->OnGetCellColors(row, col, text, back);
}

UINT AfxListView::StateImage(int row) const {
    if (CListCtrl* owner = Owner())
        if (const int image = owner->OnGetStateImage(row); image >= 0)
            return UINT(image);
    const auto it = m_stateImages.find(row);
    if (it != m_stateImages.end())
        return it->second;
    return (m_exStyle & LVS_EX_CHECKBOXES) ? 1 : 0;
}

void AfxListView::SetStateImage(int row, UINT index) {
    if (StateImage(row) == index)
        return;
    m_stateImages[row] = index;
    viewport()->update();
}

int AfxListView::NextSelected(int from) const {
    int best = -1;
    if (!selectionModel())
        return -1;
    for (const QItemSelectionRange& r : selectionModel()->selection()) {
        int candidate = -1;
        if (r.bottom() < from)
            continue;
        candidate = std::max(r.top(), from);
        if (best < 0 || candidate < best)
            best = candidate;
    }
    return best;
}

void AfxListView::NotifyClick(UINT code, QPoint vp) {
    HWND h = HandleOf(this);
    if (!h)
        return;
    NMITEMACTIVATE nm{};
    nm.hdr.code = code;
    const QModelIndex idx = indexAt(vp);
    nm.iItem = idx.isValid() ? idx.row() : -1;
    nm.iSubItem = idx.isValid() ? idx.column() : (columnAt(vp.x()) >= 0 ? columnAt(vp.x()) : 0);
    const QPoint client = vp + ViewportOffset();
    nm.ptAction = POINT{client.x(), client.y()};
    NotifyHdr(h, &nm.hdr);
}

void AfxListView::mousePressEvent(QMouseEvent* e) {
    const QPoint vp = e->position().toPoint();
    const QModelIndex idx = indexAt(vp);
    if (idx.isValid() && idx.column() == 0 && (m_exStyle & LVS_EX_CHECKBOXES) &&
        e->button() == Qt::LeftButton && vp.x() - visualRect(idx).left() < kCheckWidth) {
        SetStateImage(idx.row(), StateImage(idx.row()) == 2 ? 1 : 2);
    }
    QPointer<AfxListView> self(this);
    QTableView::mousePressEvent(e);
    if (!self)
        return;
    if (idx.isValid() && !(e->modifiers() & Qt::ShiftModifier))
        m_selectionMark = idx.row();
    if (e->button() == Qt::LeftButton)
        NotifyClick(NM_CLICK, vp);
    else if (e->button() == Qt::RightButton)
        NotifyClick(NM_RCLICK, vp);
}

void AfxListView::mouseDoubleClickEvent(QMouseEvent* e) {
    QPointer<AfxListView> self(this);
    QTableView::mouseDoubleClickEvent(e);
    if (self && e->button() == Qt::LeftButton)
        NotifyClick(NM_DBLCLK, e->position().toPoint());
}

void AfxListView::keyPressEvent(QKeyEvent* e) {
    if (HWND h = HandleOf(this)) {
        NMLVKEYDOWN nm{};
        nm.hdr.code = LVN_KEYDOWN;
        nm.wVKey = WORD(e->key() == Qt::Key_Space ? VK_SPACE : (e->key() & 0xFFFF));
        if (e->key() == Qt::Key_Delete)
            nm.wVKey = WORD(VK_DELETE);
        else if (e->key() == Qt::Key_Up)
            nm.wVKey = WORD(VK_UP);
        else if (e->key() == Qt::Key_Down)
            nm.wVKey = WORD(VK_DOWN);
        else if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter)
            nm.wVKey = WORD(VK_RETURN);
        NotifyHdr(h, &nm.hdr);
        if (!Lookup(h))
            return;
    }
    if (e->key() == Qt::Key_Space && (m_exStyle & LVS_EX_CHECKBOXES) && currentIndex().isValid()) {
        const int row = currentIndex().row();
        SetStateImage(row, StateImage(row) == 2 ? 1 : 2);
        return;
    }
    QTableView::keyPressEvent(e);
    if (currentIndex().isValid() && !(e->modifiers() & Qt::ShiftModifier))
        m_selectionMark = currentIndex().row();
}

void AfxListView::NotePainted(int row, int col, const CString& text, COLORREF fg, COLORREF bg,
                              bool whole) {
    // Only lists that compare keep a record, and only of the rows on screen.
    if (!m_comparing || col < 0 || size_t(col) >= m_columns.size())
        return;
    PaintedRow& painted = m_painted[row];
    if (painted.cells.size() != m_columns.size()) {
        painted.cells.assign(m_columns.size(), PaintedCell());
        painted.stateImage = StateImage(row);
        painted.image = ItemImage(row);
    }
    PaintedCell& cell = painted.cells[size_t(col)];
    cell.valid = whole;
    if (whole) {
        cell.text = text;
        cell.fg = fg;
        cell.bg = bg;
    }
}

int AfxListView::UpdateChangedCells() {
    m_comparing = true;
    const int columns = int(m_columns.size());
    if (m_count <= 0 || columns == 0 || !isVisible()) {
        m_painted.clear();
        return 0;
    }
    const int top = std::max(0, rowAt(0));
    int bottom = rowAt(viewport()->height() - 1);
    if (bottom < 0)
        bottom = m_count - 1;
    for (auto it = m_painted.begin(); it != m_painted.end();)
        it = it->first < top || it->first > bottom ? m_painted.erase(it) : std::next(it);
    const int width = viewport()->width();
    int scheduled = 0;
    for (int row = top; row <= bottom; ++row) {
        PaintedRow& painted = m_painted[row];
        const UINT stateImage = StateImage(row);
        const int image = ItemImage(row);
        if (painted.cells.size() != size_t(columns) || painted.stateImage != stateImage ||
            painted.image != image) {
            // A check or an image changed: the whole row is painted again.
            painted.cells.assign(size_t(columns), PaintedCell());
            painted.stateImage = stateImage;
            painted.image = image;
        }
        for (int col = 0; col < columns; ++col) {
            const int x = columnViewportPosition(col);
            const int w = columnWidth(col);
            if (isColumnHidden(col) || w <= 0 || x + w <= 0 || x >= width)
                continue;
            const CString text = CellText(row, col);
            COLORREF fg = CLR_DEFAULT;
            COLORREF bg = CLR_DEFAULT;
            CellColors(row, col, fg, bg);
            const PaintedCell& cell = painted.cells[size_t(col)];
            if (cell.valid && cell.fg == fg && cell.bg == bg && cell.text == text)
                continue;
            viewport()->update(visualRect(m_model->index(row, col)));
            ++scheduled;
        }
    }
    return scheduled;
}

QWidget* MakeListWidget(DWORD style, QWidget* parent) {
    return new AfxListView(style, parent);
}

void ConnectList(HWND h) {
    auto* v = WidgetAs<AfxListView>(h);
    if (!v)
        return;
    v->m_self = h;
    QObject::connect(v->horizontalHeader(), &QHeaderView::sectionClicked, v, [v](int section) {
        HWND list = HandleOf(v);
        NMLISTVIEW nm{};
        nm.hdr.code = LVN_COLUMNCLICK;
        nm.iItem = -1;
        nm.iSubItem = section;
        NotifyHdr(list, &nm.hdr);
    });
    // The header is a window of its own, child of the list, as its notifications expect.
    v->m_header = Register(v->horizontalHeader(), KHeader, 0, WS_CHILD | WS_VISIBLE);
    HWND header = v->m_header;
    QObject::connect(v->horizontalHeader(), &QHeaderView::sectionResized, v,
                     [header](int section, int, int size) {
                         HDITEM item{HDI_WIDTH, size};
                         NMHEADER nm{};
                         nm.iItem = section;
                         nm.pitem = &item;
                         nm.hdr.code = HDN_ITEMCHANGING;
                         NotifyHdr(header, &nm.hdr);
                         nm.hdr.code = HDN_ITEMCHANGED;
                         NotifyHdr(header, &nm.hdr);
                     });
    auto scrolled = [v](bool vertical) {
        HWND list = HandleOf(v);
        if (!list)
            return;
        const int pos =
            vertical ? v->verticalScrollBar()->value() : v->horizontalScrollBar()->value();
        Send(list, vertical ? WM_VSCROLL : WM_HSCROLL, MAKEWPARAM(SB_THUMBPOSITION, WORD(pos)), 0);
    };
    QObject::connect(v->verticalScrollBar(), &QScrollBar::valueChanged, v,
                     [scrolled] { scrolled(true); });
    QObject::connect(v->horizontalScrollBar(), &QScrollBar::valueChanged, v,
                     [scrolled] { scrolled(false); });
}

} // namespace afxi
