#include <skin/ZorSkin.h>

#include <afx/afxqt.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <map>

namespace {

const char* const kSkinStyle = R"(
QWidget[zorskin="dialog"] { background: #f4f6f9; }
QPushButton {
    background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #ffffff, stop:1 #e9edf2);
    border: 1px solid #b4bfcc; border-radius: 3px; padding: 3px 10px; color: #1f2933;
}
QPushButton:hover { border-color: #4a8fd6; }
QPushButton:pressed { background: #dbe5f0; }
QPushButton:default { border: 1px solid #2f6fb3; }
QPushButton:disabled { color: #9aa5b1; background: #eef1f4; border-color: #cfd6de; }
QLineEdit, QPlainTextEdit {
    background: #ffffff; border: 1px solid #c3ccd8; border-radius: 2px; padding: 1px 4px;
}
QLineEdit:focus, QPlainTextEdit:focus { border-color: #4a8fd6; }
QLineEdit:disabled, QLineEdit:read-only { background: #eef1f4; color: #52606d; }
QTreeView, QTableView { background: #ffffff; border: 1px solid #c3ccd8; }
QHeaderView::section {
    background: #eef1f5; color: #1f2933; border: none;
    border-right: 1px solid #d5dbe3; border-bottom: 1px solid #c8d0da; padding: 3px 6px;
}
QGroupBox { border: 1px solid #c8d0da; border-radius: 3px; margin-top: 8px; }
QGroupBox::title { subcontrol-origin: margin; left: 8px; padding: 0 3px; }
)";

QWidget* W(const CWnd* w) {
    return w ? AfxWidgetFromHandle(w->GetSafeHwnd()) : nullptr;
}

// Numbers sort by value, everything else by text.
bool LessCell(const CString& a, const CString& b) {
    bool okA = false, okB = false;
    const double x = AfxToQString(a).trimmed().toDouble(&okA);
    const double y = AfxToQString(b).trimmed().toDouble(&okB);
    if (okA && okB)
        return x < y;
    if (okA != okB)
        return okA;
    return AfxToQString(a).localeAwareCompare(AfxToQString(b)) < 0;
}

// A shown column is never narrower than its title needs in the header's font, so that a
// title stays whole in any language: widths given in code are what a column has at least.
// A column of width 0 is hidden on purpose and stays so.
void WidenToTitle(QHeaderView* header, int first, int last) {
    for (int col = std::max(first, 0); col <= last && col < header->count(); ++col) {
        const int size = header->sectionSize(col);
        if (size > 0 && !header->isSectionHidden(col)) {
            const int needed = header->sectionSizeHint(col);
            if (needed > size)
                header->resizeSection(col, needed);
        }
    }
}

void FitTitles(QHeaderView* header) {
    if (header->orientation() != Qt::Horizontal || header->property("zorskin.fit").toBool())
        return;
    header->setProperty("zorskin.fit", true);
    WidenToTitle(header, 0, header->count() - 1);
    // The model of a list stays the same for the list's life; a title may change at any
    // time (a language change) and a program may set any width.
    if (QAbstractItemModel* model = header->model()) {
        QObject::connect(model, &QAbstractItemModel::headerDataChanged, header,
                         [header](Qt::Orientation o, int first, int last) {
                             if (o == Qt::Horizontal)
                                 WidenToTitle(header, first, last);
                         });
        QObject::connect(model, &QAbstractItemModel::columnsInserted, header,
                         [header](const QModelIndex&, int first, int last) {
                             WidenToTitle(header, first, last);
                         });
    }
    QObject::connect(header, &QHeaderView::sectionResized, header,
                     [header](int col, int, int) { WidenToTitle(header, col, col); });
    // Titles are measured in the font and style the header has when shown.
    QObject::connect(header, &QHeaderView::geometriesChanged, header,
                     [header] { WidenToTitle(header, 0, header->count() - 1); });
}

void FitTitlesBelow(QWidget* root) {
    for (QHeaderView* header : root->findChildren<QHeaderView*>())
        FitTitles(header);
}

} // namespace

void ZorSkinApplyStyle(CWnd* pWnd) {
    QWidget* w = W(pWnd);
    if (!w)
        return;
    w->setProperty("zorskin", "dialog");
    w->setAutoFillBackground(true);
    w->setStyleSheet(kSkinStyle);
    FitTitlesBelow(w);
}

// ---------------------------------------------------------------- dialog
BOOL CZorSkinPDialog::OnInitDialog() {
    const BOOL r = CDialog::OnInitDialog();
    if (m_visualStyle)
        ZorSkinApplyStyle(this);
    return r;
}

void CZorSkinPDialog::EnableVisualStyle(BOOL bEnable) {
    m_visualStyle = bEnable;
    if (bEnable && m_hWnd)
        ZorSkinApplyStyle(this);
}

BOOL CZorSkinPDialog::AddAnchor(UINT nID, CSize topLeft, CSize bottomRight) {
    CWnd* c = GetDlgItem(int(nID));
    QWidget* w = W(c);
    if (!w)
        return FALSE;
    CRect client;
    GetClientRect(&client);
    const QRect g = w->geometry();
    for (auto& a : m_anchors)
        if (a.id == nID) {
            a = {nID, topLeft, bottomRight, CRect(g.left(), g.top(), g.right() + 1, g.bottom() + 1),
                 client.Size()};
            return TRUE;
        }
    m_anchors.push_back({nID, topLeft, bottomRight,
                         CRect(g.left(), g.top(), g.right() + 1, g.bottom() + 1), client.Size()});
    return TRUE;
}

void CZorSkinPDialog::ArrangeLayout() {
    CRect client;
    GetClientRect(&client);
    for (const Anchor& a : m_anchors) {
        CWnd* c = GetDlgItem(int(a.id));
        if (!c)
            continue;
        const int dx = client.Width() - a.startClient.cx;
        const int dy = client.Height() - a.startClient.cy;
        CRect r(a.start.left + dx * a.tl.cx / 100, a.start.top + dy * a.tl.cy / 100,
                a.start.right + dx * a.br.cx / 100, a.start.bottom + dy * a.br.cy / 100);
        c->MoveWindow(&r);
    }
}

void CZorSkinPDialog::OnSize(UINT nType, int cx, int cy) {
    CDialog::OnSize(nType, cx, cy);
    ArrangeLayout();
}

// ---------------------------------------------------------------- list
void CZorSkinPListCtrl::ApplySkinStyle() {
    if (QWidget* w = W(this))
        FitTitlesBelow(w);
    SetExtendedStyle(GetExtendedStyle() | LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES |
                     LVS_EX_DOUBLEBUFFER);
}

BOOL CZorSkinPListCtrl::OnChildNotify(UINT message, WPARAM, LPARAM lParam, LRESULT*) {
    if (message != WM_NOTIFY || !m_headerSort)
        return FALSE;
    auto* nm = reinterpret_cast<NMLISTVIEW*>(lParam);
    if (nm->hdr.code != LVN_COLUMNCLICK)
        return FALSE;
    const int col = nm->iSubItem;
    m_sortAscending = col == m_sortColumn ? !m_sortAscending : TRUE;
    m_sortColumn = col;
    SortColumn(col, m_sortAscending);
    if (m_markSorted)
        if (CHeaderCtrl* h = GetHeaderCtrl())
            h->SetSortArrow(col, m_sortAscending);
    return FALSE; // the parent hears of the click too
}

void CZorSkinPListCtrl::SortColumn(int nColumn, BOOL bAscending) {
    if (IsOwnerData() || nColumn < 0 || nColumn >= GetColumnCount())
        return;
    struct Row {
        std::vector<CString> texts;
        DWORD_PTR data;
        BOOL check;
        int image;
    };
    const int n = GetItemCount();
    const int cols = GetColumnCount();
    std::vector<Row> rows;
    rows.reserve(size_t(n));
    for (int i = 0; i < n; ++i) {
        Row r{{}, GetItemData(i), GetCheck(i), OnGetItemImage(i)};
        for (int c = 0; c < cols; ++c)
            r.texts.push_back(GetItemText(i, c));
        rows.push_back(std::move(r));
    }
    std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
        return bAscending ? LessCell(a.texts[size_t(nColumn)], b.texts[size_t(nColumn)])
                          : LessCell(b.texts[size_t(nColumn)], a.texts[size_t(nColumn)]);
    });
    for (int i = 0; i < n; ++i) {
        for (int c = 0; c < cols; ++c)
            SetItemText(i, c, rows[size_t(i)].texts[size_t(c)].GetString());
        SetItemData(i, rows[size_t(i)].data);
        SetItemImage(i, rows[size_t(i)].image);
        if (GetExtendedStyle() & LVS_EX_CHECKBOXES)
            SetCheck(i, rows[size_t(i)].check);
    }
}

void CZorSkinPTreeCtrl::ApplySkinStyle() {
    SetBkColor(RGB(255, 255, 255));
    SetTextColor(RGB(0, 0, 0));
}

void CZorSkinPButton::SetIcon(HICON hIcon) {
    if (QWidget* w = W(this))
        if (auto* b = qobject_cast<QAbstractButton*>(w))
            b->setIcon(QIcon(AfxIconPixmap(hIcon)));
}

void CZorSkinPButton::SetFaceColor(COLORREF color) {
    m_face = color;
    if (QWidget* w = W(this))
        w->setStyleSheet(QString("background-color: rgb(%1, %2, %3);")
                             .arg(GetRValue(color))
                             .arg(GetGValue(color))
                             .arg(GetBValue(color)));
}

// ---------------------------------------------------------------- menu button
CZorSkinPMenuButton::CZorSkinPMenuButton() = default;
CZorSkinPMenuButton::~CZorSkinPMenuButton() = default;

BOOL CZorSkinPMenuButton::SetMenu(UINT nIDMenu) {
    auto menu = std::make_unique<CMenu>();
    if (!menu->LoadMenu(nIDMenu))
        return FALSE;
    m_menu = std::move(menu);
    return TRUE;
}

BOOL CZorSkinPMenuButton::OnChildNotify(UINT message, WPARAM wParam, LPARAM, LRESULT*) {
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED)
        return FALSE;
    m_nMenuResult = 0;
    CMenu* popup =
        m_menu ? (m_menu->GetSubMenu(0) ? m_menu->GetSubMenu(0) : m_menu.get()) : nullptr;
    if (popup) {
        CRect r;
        GetWindowRect(&r);
        m_nMenuResult =
            UINT(popup->TrackPopupMenu(TPM_RETURNCMD | TPM_LEFTALIGN, r.left, r.bottom, this));
    }
    return FALSE;
}

UINT CZorSkinPPopupMenu::Track(CWnd* pOwner, CPoint screenPoint) {
    return UINT(
        TrackPopupMenu(TPM_RETURNCMD | TPM_RIGHTBUTTON, screenPoint.x, screenPoint.y, pOwner));
}

// ---------------------------------------------------------------- text gauge
namespace {

class GaugeWidget : public QWidget {
public:
    explicit GaugeWidget(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    QString text;
    QColor color{0xb0, 0x3a, 0x2e};

protected:
    void paintEvent(QPaintEvent*) override {
        if (text.isEmpty())
            return;
        // The unit canvas spans the control; the text stands in its middle, as large as
        // fits, never larger than the dialog's text.
        const QRectF r = QRectF(rect()).adjusted(2, 1, -2, -1);
        QPainter p(this);
        p.setRenderHint(QPainter::TextAntialiasing);
        QFont f = font();
        const int flags = Qt::AlignCenter | Qt::TextWordWrap;
        for (int px = 13; px >= 7; --px) {
            f.setPixelSize(px);
            if (QFontMetricsF(f).boundingRect(r, flags, text).height() <= r.height())
                break;
        }
        p.setFont(f);
        p.setPen(color);
        p.drawText(r, flags, text);
    }
};

} // namespace

BOOL CZorSkinPTextGauge::Create(CWnd* pContainer, int unitsX, int unitsY) {
    QWidget* parent = W(pContainer);
    if (!parent || m_hWnd)
        return FALSE;
    m_units = CSize(std::max(1, unitsX), std::max(1, unitsY));
    auto* g = new GaugeWidget(parent);
    g->setGeometry(parent->rect());
    if (!AfxAttachCustomWidget(this, g, 0, WS_CHILD | WS_VISIBLE)) {
        delete g;
        return FALSE;
    }
    return TRUE;
}

void CZorSkinPTextGauge::SetText(const char* text) {
    m_text = text;
    if (auto* g = dynamic_cast<GaugeWidget*>(W(this))) {
        g->text = AfxToQString(m_text).replace("\r\n", "\n");
        g->setAccessibleName(g->text); // a painted text: what reads the screen finds it here
        g->update();
    }
}

void CZorSkinPTextGauge::SetTextColor(COLORREF c) {
    if (auto* g = dynamic_cast<GaugeWidget*>(W(this))) {
        g->color = QColor(GetRValue(c), GetGValue(c), GetBValue(c));
        g->update();
    }
}

// ---------------------------------------------------------------- grid items
CZorSkinPGridItem::CZorSkinPGridItem(const char* value) : m_value(value) {}
CZorSkinPGridItem::~CZorSkinPGridItem() = default;

void CZorSkinPGridItem::AddOption(const char* text) {
    m_options.emplace_back(text);
}
void CZorSkinPGridItem::RemoveAllOptions() {
    m_options.clear();
}

CString CZorSkinPGridItem::GetOption(int i) const {
    return i >= 0 && size_t(i) < m_options.size() ? m_options[size_t(i)] : CString();
}

int CZorSkinPGridItem::FindOption(const char* text) const {
    for (size_t i = 0; i < m_options.size(); ++i)
        if (m_options[i] == text)
            return int(i);
    return -1;
}

void CZorSkinPGridItem::SetValue(const char* text) {
    m_value = text;
    if (m_grid)
        m_grid->SetCellText(m_row, m_col, m_value.GetString());
}

void CZorSkinPGridItem::ChooseOption(int nIndex) {
    if (nIndex < 0 || size_t(nIndex) >= m_options.size())
        return;
    SetValue(m_options[size_t(nIndex)].GetString());
    OnValueChanged();
}

void CZorSkinPGridItem::OnValueChanged() {}
