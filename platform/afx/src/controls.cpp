#include "controls_p.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace afxi {

// ---------------------------------------------------------------- widgets
AfxWindow::AfxWindow(QWidget* parent, bool dialog) : QWidget(parent), m_dialog(dialog) {
    if (dialog)
        setAutoFillBackground(true);
    else
        setMouseTracking(true); // plain windows hear moves without a button, splitters need it
}

AfxCombo::AfxCombo(QWidget* parent) : QComboBox(parent) {}

void AfxCombo::showPopup() {
    if (HWND h = HandleOf(this))
        NotifyCommand(h, CBN_DROPDOWN);
    m_dropped = true;
    m_confirmed = false;
    QComboBox::showPopup();
}

void AfxCombo::hidePopup() {
    QComboBox::hidePopup();
    if (!m_dropped)
        return;
    m_dropped = false;
    // The entry's activation follows the popup's closing; tell the outcome after it.
    QPointer<AfxCombo> self(this);
    QTimer::singleShot(0, this, [self] {
        if (!self)
            return;
        HWND h = HandleOf(self);
        if (!h)
            return;
        if (!self->m_confirmed)
            NotifyCommand(h, CBN_SELENDCANCEL);
        if (Lookup(h))
            NotifyCommand(h, CBN_CLOSEUP);
    });
}

namespace {

// A single-line edit, or a plain-text editor for ES_MULTILINE (no wrapping with WS_HSCROLL).
QWidget* MakeEditWidget(DWORD style, const QString& t, QWidget* parent) {
    if (style & ES_MULTILINE) {
        auto* e = new QPlainTextEdit(parent);
        e->setPlainText(QString(t).replace("\r\n", "\n"));
        e->setReadOnly(style & ES_READONLY);
        e->setLineWrapMode((style & WS_HSCROLL) ? QPlainTextEdit::NoWrap
                                                : QPlainTextEdit::WidgetWidth);
        return e;
    }
    auto* e = new QLineEdit(t, parent);
    e->setReadOnly(style & ES_READONLY);
    if (style & ES_PASSWORD)
        e->setEchoMode(QLineEdit::Password);
    if (style & ES_CENTER)
        e->setAlignment(Qt::AlignCenter);
    else if (style & ES_RIGHT)
        e->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return e;
}

} // namespace

QWidget* MakeWidget(int kind, DWORD style, const char* text, QWidget* parent) {
    const QString t = Q(text);
    QWidget* w = nullptr;
    switch (kind) {
    case KWindow:
    case KCustom:
        w = new AfxWindow(parent, false);
        break;
    case KDialog:
        w = new AfxWindow(parent, true);
        w->setWindowTitle(t);
        break;
    case KButton: {
        auto* b = new QPushButton(t, parent);
        b->setAutoDefault(false);
        b->setDefault(style & BS_DEFPUSHBUTTON);
        w = b;
        break;
    }
    case KCheck:
        w = new QCheckBox(t, parent);
        break;
    case KRadio: {
        auto* r = new QRadioButton(t, parent);
        r->setAutoExclusive(false);
        w = r;
        break;
    }
    case KGroupBox:
        w = new QGroupBox(t, parent);
        w->setAttribute(Qt::WA_TransparentForMouseEvents);
        w->lower();
        break;
    case KEdit:
        w = MakeEditWidget(style, t, parent);
        break;
    case KStatic: {
        auto* l = new QLabel(t, parent);
        Qt::Alignment a = Qt::AlignVCenter;
        a |= (style & SS_CENTER) ? Qt::AlignHCenter
                                 : ((style & SS_RIGHT) ? Qt::AlignRight : Qt::AlignLeft);
        l->setAlignment(a);
        l->setWordWrap(true);
        l->setTextFormat(Qt::PlainText);
        w = l;
        break;
    }
    case KComboList:
    case KComboEdit: {
        auto* c = new AfxCombo(parent);
        c->setEditable(kind == KComboEdit);
        c->setInsertPolicy(QComboBox::NoInsert);
        if (kind == KComboEdit)
            c->lineEdit()->setText(t);
        w = c;
        break;
    }
    case KTree:
        w = MakeTreeWidget(style, parent);
        break;
    case KList:
        w = MakeListWidget(style, parent);
        break;
    default:
        return nullptr;
    }
    return w;
}

void ConnectNotifications(HWND h, int kind) {
    QWidget* w = WidgetOf(h);
    switch (kind) {
    case KButton:
    case KCheck:
    case KRadio: {
        auto* b = static_cast<QAbstractButton*>(w);
        QObject::connect(b, &QAbstractButton::clicked, [h, kind] {
            if (kind == KRadio)
                RadioClicked(h);
            NotifyCommand(h, BN_CLICKED);
        });
        break;
    }
    case KEdit:
        if (auto* e = qobject_cast<QLineEdit*>(w))
            QObject::connect(e, &QLineEdit::textChanged, [h] { NotifyCommand(h, EN_CHANGE); });
        else if (auto* m = qobject_cast<QPlainTextEdit*>(w))
            QObject::connect(m, &QPlainTextEdit::textChanged, [h] { NotifyCommand(h, EN_CHANGE); });
        break;
    case KComboList:
    case KComboEdit: {
        auto* c = static_cast<AfxCombo*>(w);
        QObject::connect(c, &QComboBox::activated, [h, c](int) {
            c->m_confirmed = true;
            NotifyCommand(h, CBN_SELCHANGE);
            if (Lookup(h))
                NotifyCommand(h, CBN_SELENDOK);
        });
        if (kind == KComboEdit)
            QObject::connect(c->lineEdit(), &QLineEdit::textEdited,
                             [h] { NotifyCommand(h, CBN_EDITCHANGE); });
        break;
    }
    case KTree:
        ConnectTree(h);
        break;
    case KList:
        ConnectList(h);
        break;
    default:
        break;
    }
}

void RadioClicked(HWND h) {
    QWidget* w = WidgetOf(h);
    if (!w || !w->parentWidget())
        return;
    auto* r = static_cast<QRadioButton*>(w);
    r->setChecked(true);
    // The group: consecutive radios among the siblings, a WS_GROUP radio starting a new one.
    std::vector<std::vector<HWND>> groups(1);
    for (QObject* o : w->parentWidget()->children()) {
        if (!o->isWidgetType())
            continue;
        HWND s = AfxHandleFromWidget(static_cast<QWidget*>(o));
        WindowData* d = Lookup(s);
        if (!d)
            continue;
        if (d->kind != KRadio) {
            if (!groups.back().empty())
                groups.emplace_back();
            continue;
        }
        if ((d->style & WS_GROUP) && !groups.back().empty())
            groups.emplace_back();
        groups.back().push_back(s);
    }
    for (const auto& g : groups) {
        if (std::find(g.begin(), g.end(), h) == g.end())
            continue;
        for (HWND s : g)
            if (s != h)
                if (auto* other = qobject_cast<QRadioButton*>(WidgetOf(s)))
                    other->setChecked(false);
    }
}

} // namespace afxi

using namespace afxi;

// ---------------------------------------------------------------- text of any window
void CWnd::SetWindowText(const char* text) {
    WindowData* d = Lookup(m_hWnd);
    if (!d || !d->widget)
        return;
    QWidget* w = d->widget;
    const QString t = Q(text);
    if (auto* b = qobject_cast<QAbstractButton*>(w))
        b->setText(t);
    else if (auto* g = qobject_cast<QGroupBox*>(w))
        g->setTitle(t);
    else if (auto* e = qobject_cast<QLineEdit*>(w))
        e->setText(t);
    else if (auto* m = qobject_cast<QPlainTextEdit*>(w))
        m->setPlainText(QString(t).replace("\r\n", "\n"));
    else if (auto* l = qobject_cast<QLabel*>(w))
        l->setText(t);
    else if (auto* c = qobject_cast<QComboBox*>(w)) {
        if (c->isEditable())
            c->lineEdit()->setText(t);
        else
            c->setCurrentIndex(c->findText(t, Qt::MatchFixedString));
    } else
        w->setWindowTitle(t);
}

void CWnd::GetWindowText(CString& text) const {
    text = GetWindowTextString();
}

CString CWnd::GetWindowTextString() const {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return CString();
    if (auto* b = qobject_cast<QAbstractButton*>(w))
        return C(b->text());
    if (auto* g = qobject_cast<QGroupBox*>(w))
        return C(g->title());
    if (auto* e = qobject_cast<QLineEdit*>(w))
        return C(e->text());
    if (auto* m = qobject_cast<QPlainTextEdit*>(w))
        return C(m->toPlainText().replace("\n", "\r\n"));
    if (auto* l = qobject_cast<QLabel*>(w))
        return C(l->text());
    if (auto* c = qobject_cast<QComboBox*>(w))
        return C(c->currentText());
    return C(w->windowTitle());
}

// ---------------------------------------------------------------- CButton
BOOL CButton::Create(const char* caption, DWORD dwStyle, const RECT& rect, CWnd* pParent,
                     UINT nID) {
    const DWORD type = dwStyle & 0x0F;
    int kind = KButton;
    if (type == BS_CHECKBOX || type == BS_AUTOCHECKBOX)
        kind = KCheck;
    else if (type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON)
        kind = KRadio;
    else if (type == BS_GROUPBOX)
        kind = KGroupBox;
    return CreateFromKind(kind, caption, dwStyle, rect, pParent, nID);
}

int CButton::GetCheck() const {
    auto* b = qobject_cast<QAbstractButton*>(WidgetOf(m_hWnd));
    if (!b)
        return BST_UNCHECKED;
    if (auto* c = qobject_cast<QCheckBox*>(b); c && c->checkState() == Qt::PartiallyChecked)
        return BST_INDETERMINATE;
    return b->isChecked() ? BST_CHECKED : BST_UNCHECKED;
}

void CButton::SetCheck(int nCheck) {
    auto* b = qobject_cast<QAbstractButton*>(WidgetOf(m_hWnd));
    if (!b)
        return;
    if (auto* c = qobject_cast<QCheckBox*>(b)) {
        c->setCheckState(nCheck == BST_INDETERMINATE ? Qt::PartiallyChecked
                                                     : (nCheck ? Qt::Checked : Qt::Unchecked));
        return;
    }
    b->setChecked(nCheck == BST_CHECKED);
}

void CButton::Click() {
    if (auto* b = qobject_cast<QAbstractButton*>(WidgetOf(m_hWnd)); b && b->isEnabled())
        b->click();
}

// ---------------------------------------------------------------- CStatic
BOOL CStatic::Create(const char* text, DWORD dwStyle, const RECT& rect, CWnd* pParent, UINT nID) {
    return CreateFromKind(KStatic, text, dwStyle, rect, pParent, nID);
}

HICON CStatic::SetIcon(HICON hIcon) {
    auto* l = qobject_cast<QLabel*>(WidgetOf(m_hWnd));
    if (l && hIcon)
        l->setPixmap(IconPixmap(hIcon));
    return nullptr;
}

// ---------------------------------------------------------------- CEdit
// Edit positions count characters (code points), as CString does; Qt counts UTF-16 units.
static int ToUtf16(const QString& s, int chars) {
    int i = 0;
    for (int c = 0; c < chars && i < s.size(); ++c)
        i += (s.at(i).isHighSurrogate() && i + 1 < s.size()) ? 2 : 1;
    return i;
}

static int ToChars(const QString& s, int utf16) {
    int chars = 0;
    for (int i = 0; i < utf16 && i < s.size(); ++chars)
        i += (s.at(i).isHighSurrogate() && i + 1 < s.size()) ? 2 : 1;
    return chars;
}

BOOL CEdit::Create(DWORD dwStyle, const RECT& rect, CWnd* pParent, UINT nID) {
    return CreateFromKind(KEdit, "", dwStyle, rect, pParent, nID);
}

void CEdit::SetSel(int nStart, int nEnd, BOOL) {
    if (auto* e = qobject_cast<QLineEdit*>(WidgetOf(m_hWnd))) {
        const QString t = e->text();
        if (nStart < 0) {
            e->deselect();
            return;
        }
        const int a = ToUtf16(t, nStart);
        const int b = nEnd < 0 ? int(t.size()) : ToUtf16(t, nEnd);
        e->setSelection(a, std::max(0, b - a));
    } else if (auto* m = qobject_cast<QPlainTextEdit*>(WidgetOf(m_hWnd))) {
        const QString t = m->toPlainText();
        QTextCursor c = m->textCursor();
        c.setPosition(nStart < 0 ? 0 : ToUtf16(t, nStart));
        c.setPosition(nEnd < 0 ? int(t.size()) : ToUtf16(t, nEnd), QTextCursor::KeepAnchor);
        m->setTextCursor(c);
    }
}

void CEdit::GetSel(int& nStart, int& nEnd) const {
    nStart = nEnd = 0;
    if (auto* e = qobject_cast<QLineEdit*>(WidgetOf(m_hWnd))) {
        const QString t = e->text();
        if (e->hasSelectedText()) {
            const int a = int(e->selectionStart());
            nStart = ToChars(t, a);
            nEnd = ToChars(t, a + int(e->selectedText().size()));
        } else {
            nStart = nEnd = ToChars(t, int(e->cursorPosition()));
        }
    } else if (auto* m = qobject_cast<QPlainTextEdit*>(WidgetOf(m_hWnd))) {
        const QString t = m->toPlainText();
        nStart = ToChars(t, m->textCursor().selectionStart());
        nEnd = ToChars(t, m->textCursor().selectionEnd());
    }
}

BOOL CEdit::SetReadOnly(BOOL bReadOnly) {
    if (auto* e = qobject_cast<QLineEdit*>(WidgetOf(m_hWnd)))
        e->setReadOnly(bReadOnly);
    else if (auto* m = qobject_cast<QPlainTextEdit*>(WidgetOf(m_hWnd)))
        m->setReadOnly(bReadOnly);
    else
        return FALSE;
    if (WindowData* d = Lookup(m_hWnd))
        d->style = bReadOnly ? (d->style | ES_READONLY) : (d->style & ~ES_READONLY);
    return TRUE;
}

void CEdit::SetPasswordChar(TCHAR ch) {
    if (auto* e = qobject_cast<QLineEdit*>(WidgetOf(m_hWnd)))
        e->setEchoMode(ch ? QLineEdit::Password : QLineEdit::Normal);
}

// ---------------------------------------------------------------- CComboBox
static AfxCombo* ComboOf(HWND h) {
    return qobject_cast<AfxCombo*>(WidgetOf(h));
}

BOOL CComboBox::Create(DWORD dwStyle, const RECT& rect, CWnd* pParent, UINT nID) {
    const int kind = (dwStyle & 0x3) == CBS_DROPDOWN ? KComboEdit : KComboList;
    return CreateFromKind(kind, "", dwStyle, rect, pParent, nID);
}

int CComboBox::GetCount() const {
    AfxCombo* c = ComboOf(m_hWnd);
    return c ? c->count() : 0;
}

int CComboBox::GetCurSel() const {
    AfxCombo* c = ComboOf(m_hWnd);
    return c ? c->currentIndex() : CB_ERR;
}

int CComboBox::SetCurSel(int nSelect) {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c)
        return CB_ERR;
    if (nSelect < 0 || nSelect >= c->count()) {
        c->setCurrentIndex(-1);
        if (c->isEditable())
            c->lineEdit()->clear();
        return CB_ERR;
    }
    c->setCurrentIndex(nSelect);
    return nSelect;
}

int CComboBox::AddString(const char* text) {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c)
        return CB_ERR;
    const QString t = Q(text);
    const int at = c->count();
    const int keep = c->currentIndex();
    const QString editText = c->isEditable() ? c->lineEdit()->text() : QString();
    c->insertItem(at, t, QVariant(qulonglong(0)));
    // Adding never selects, as on the home platform.
    if (keep < 0) {
        c->setCurrentIndex(-1);
        if (c->isEditable())
            c->lineEdit()->setText(editText);
    }
    return at;
}

int CComboBox::InsertString(int nIndex, const char* text) {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c)
        return CB_ERR;
    const int at = (nIndex < 0 || nIndex > c->count()) ? c->count() : nIndex;
    const int keep = c->currentIndex();
    c->insertItem(at, Q(text), QVariant(qulonglong(0)));
    if (keep < 0)
        c->setCurrentIndex(-1);
    return at;
}

void CComboBox::ResetContent() {
    if (AfxCombo* c = ComboOf(m_hWnd)) {
        c->clear();
        if (c->isEditable())
            c->lineEdit()->clear();
    }
}

int CComboBox::GetLBText(int nIndex, CString& text) const {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c || nIndex < 0 || nIndex >= c->count()) {
        text.Empty();
        return CB_ERR;
    }
    text = C(c->itemText(nIndex));
    return text.GetLength();
}

DWORD_PTR CComboBox::GetItemData(int nIndex) const {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c || nIndex < 0 || nIndex >= c->count())
        return DWORD_PTR(CB_ERR);
    return DWORD_PTR(c->itemData(nIndex).value<qulonglong>());
}

int CComboBox::SetItemData(int nIndex, DWORD_PTR data) {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c || nIndex < 0 || nIndex >= c->count())
        return CB_ERR;
    c->setItemData(nIndex, QVariant(qulonglong(data)));
    return 0;
}

void CComboBox::ShowDropDown(BOOL bShowIt) {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c)
        return;
    if (bShowIt && !c->dropped())
        c->showPopup();
    else if (!bShowIt && c->dropped())
        c->hidePopup();
}

int CComboBox::SetDroppedWidth(UINT nWidth) {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c)
        return CB_ERR;
    c->m_droppedWidth = int(nWidth);
    c->view()->setMinimumWidth(int(nWidth));
    return int(nWidth);
}

int CComboBox::GetDroppedWidth() const {
    AfxCombo* c = ComboOf(m_hWnd);
    if (!c)
        return CB_ERR;
    return std::max(c->m_droppedWidth, c->width());
}

void CComboBox::ChooseEntry(int nIndex) {
    QPointer<AfxCombo> c = ComboOf(m_hWnd);
    if (!c || nIndex < 0 || nIndex >= c->count())
        return;
    const HWND h = m_hWnd;
    c->setCurrentIndex(nIndex);
    const bool wasDropped = c->dropped();
    emit c->activated(nIndex);
    if (!c || !Lookup(h))
        return; // the handler closed the box
    if (wasDropped)
        c->hidePopup();
    else
        NotifyCommand(h, CBN_CLOSEUP);
}
