#include "controls_p.h"

#include <afx/afxtest.h>

#include <QApplication>
#include <QEventLoop>
#include <QGuiApplication>

#include <cstdio>

using namespace afxi;

namespace {

int KindOf(DlgCtl k) {
    switch (k) {
    case DlgCtl::Button:
        return KButton;
    case DlgCtl::Check:
        return KCheck;
    case DlgCtl::Radio:
        return KRadio;
    case DlgCtl::Edit:
        return KEdit;
    case DlgCtl::Static:
        return KStatic;
    case DlgCtl::GroupBox:
        return KGroupBox;
    case DlgCtl::ComboDropList:
        return KComboList;
    case DlgCtl::ComboDropDown:
        return KComboEdit;
    case DlgCtl::Tree:
        return KTree;
    case DlgCtl::List:
        return KList;
    case DlgCtl::Custom:
        return KCustom;
    }
    return KCustom;
}

} // namespace
namespace afxi {
extern int g_modalDepth;
} // namespace afxi
namespace {

bool Offscreen() {
    return QGuiApplication::platformName() == QLatin1String("offscreen");
}

} // namespace

CDialog::CDialog() = default;

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_nIDTemplate(nIDTemplate), m_pParentWnd(pParentWnd) {}

CDialog::~CDialog() {
    if (m_pLoop)
        static_cast<QEventLoop*>(m_pLoop)->quit();
    DestroyWindow();
}

BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd) {
    m_nIDTemplate = nIDTemplate;
    if (pParentWnd)
        m_pParentWnd = pParentWnd;
    const DlgTemplate* tmpl = AfxFindDialogTemplate(AfxGetResourceHandle(), nIDTemplate);
    if (!tmpl)
        return FALSE;
    m_bModal = FALSE;
    return CreateFromTemplate(*tmpl, m_pParentWnd, false);
}

BOOL CDialog::CreateFromTemplate(const DlgTemplate& tmpl, CWnd* pParent, bool modal) {
    if (m_hWnd)
        return FALSE;
    InitUi();
    QWidget* parentWidget = pParent ? WidgetOf(pParent->m_hWnd) : nullptr;
    const bool child = !modal && parentWidget && (tmpl.style & WS_CHILD);
    auto* w = new AfxWindow(child ? parentWidget : nullptr, true);
    if (!child) {
        // A popup dialog is a window of its own, owned by its parent's window.
        if (parentWidget)
            w->setParent(parentWidget->window(), Qt::Dialog);
        else
            w->setWindowFlags(Qt::Dialog);
    }
    w->setWindowTitle(Q(tmpl.caption));
    w->resize(tmpl.cx, tmpl.cy);
    HWND h = Register(w, KDialog, 0, tmpl.style | (child ? WS_CHILD : WS_POPUP));
    Lookup(h)->wnd = this;
    m_hWnd = h;
    m_nDefId = 0;
    for (const DlgControl& c : tmpl.controls) {
        const int kind = KindOf(c.kind);
        QWidget* cw = MakeWidget(kind, c.style, c.text, w);
        if (!cw)
            continue;
        cw->setGeometry(c.x, c.y, c.cx, c.cy);
        cw->setEnabled(!(c.style & WS_DISABLED));
        cw->setVisible(!c.hidden);
        HWND ch = Register(cw, kind, c.id, c.style | WS_CHILD | (c.hidden ? 0 : WS_VISIBLE));
        ConnectNotifications(ch, kind);
        if (kind == KButton && (c.style & BS_DEFPUSHBUTTON) && !m_nDefId)
            m_nDefId = c.id;
    }
    if (!OnInitDialog() && m_hWnd) {
        // FALSE: the dialog has set the focus itself.
    }
    if (!m_hWnd)
        return FALSE;
    if (!modal && (tmpl.style & WS_VISIBLE) && !m_bEnded)
        w->show();
    return TRUE;
}

INT_PTR CDialog::DoModal() {
    const DlgTemplate* tmpl = AfxFindDialogTemplate(AfxGetResourceHandle(), m_nIDTemplate);
    if (!tmpl || m_hWnd)
        return -1;
    m_bModal = TRUE;
    m_bEnded = FALSE;
    m_nModalResult = -1;
    CWnd* owner = m_pParentWnd;
    if (!owner) {
        if (QWidget* active = QApplication::activeWindow())
            owner = CWnd::FromHandle(HandleOf(active));
    }
    if (!CreateFromTemplate(*tmpl, owner, true)) {
        m_bModal = FALSE;
        return -1;
    }
    if (!m_bEnded && m_hWnd) {
        QWidget* w = WidgetOf(m_hWnd);
        w->setWindowModality(Qt::ApplicationModal);
        CenterWindow();
        w->show();
        const bool driven = AfxHasModalDriver();
        AfxRunModalDriver(*this);
        if (!m_bEnded && m_hWnd && !driven && Offscreen()) {
            // Nobody can answer a dialog on the offscreen platform: never block for ever.
            std::fprintf(stderr, "[afx] modal dialog %u cancelled: no modal driver\n",
                         m_nIDTemplate);
            EndDialog(IDCANCEL);
        }
        if (!m_bEnded && m_hWnd) {
            QEventLoop loop;
            m_pLoop = &loop;
            ++g_modalDepth;
            loop.exec(QEventLoop::DialogExec);
            --g_modalDepth;
            m_pLoop = nullptr;
        }
    }
    const int result = m_nModalResult;
    DestroyWindow();
    m_bModal = FALSE;
    return result;
}

void CDialog::EndDialog(int nResult) {
    m_nModalResult = nResult;
    m_bEnded = TRUE;
    if (m_pLoop)
        static_cast<QEventLoop*>(m_pLoop)->quit();
    if (QWidget* w = WidgetOf(m_hWnd))
        w->hide();
}

BOOL CDialog::UpdateData(BOOL bSaveAndValidate) {
    CDataExchange dx(this, bSaveAndValidate);
    DoDataExchange(&dx);
    return !dx.m_bFailed;
}

int CDialog::GetDefID() const {
    return m_nDefId ? int(m_nDefId) : IDOK;
}

void CDialog::SetDefID(UINT nID) {
    m_nDefId = nID;
}

void CDialog::GotoDlgCtrl(CWnd* pWndCtrl) {
    if (pWndCtrl)
        pWndCtrl->SetFocus();
}

BOOL CDialog::OnInitDialog() {
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK() {
    if (!UpdateData(TRUE))
        return;
    EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog::DoDataExchange(CDataExchange*) {}

BOOL CDialog::OnCommand(WPARAM wParam, LPARAM) {
    if (HIWORD(wParam) != BN_CLICKED)
        return FALSE;
    switch (LOWORD(wParam)) {
    case IDOK:
        OnOK();
        return TRUE;
    case IDCANCEL:
        OnCancel();
        return TRUE;
    default:
        return FALSE;
    }
}

void CDialog::OnClose() {
    OnCancel();
}

// ---------------------------------------------------------------- data exchange
void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl) {
    if (!rControl.m_hWnd)
        rControl.SubclassDlgItem(UINT(nIDC), pDX->m_pDlgWnd);
}

void DDX_Text(CDataExchange* pDX, int nIDC, CString& value) {
    if (pDX->m_bSaveAndValidate)
        pDX->m_pDlgWnd->GetDlgItemText(nIDC, value);
    else
        pDX->m_pDlgWnd->SetDlgItemText(nIDC, value.GetString());
}

void DDX_Text(CDataExchange* pDX, int nIDC, int& value) {
    if (pDX->m_bSaveAndValidate) {
        CString s;
        pDX->m_pDlgWnd->GetDlgItemText(nIDC, s);
        bool ok = false;
        const int v = Q(s.Trim()).toInt(&ok);
        if (!ok) {
            AfxMessageBox("Please enter an integer.", MB_ICONEXCLAMATION);
            pDX->Fail();
            return;
        }
        value = v;
    } else {
        CString s;
        s.Format("%d", value);
        pDX->m_pDlgWnd->SetDlgItemText(nIDC, s.GetString());
    }
}

void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value) {
    if (pDX->m_bSaveAndValidate) {
        CString s;
        pDX->m_pDlgWnd->GetDlgItemText(nIDC, s);
        bool ok = false;
        const UINT v = Q(s.Trim()).toUInt(&ok);
        if (!ok) {
            AfxMessageBox("Please enter a positive integer.", MB_ICONEXCLAMATION);
            pDX->Fail();
            return;
        }
        value = v;
    } else {
        CString s;
        s.Format("%u", value);
        pDX->m_pDlgWnd->SetDlgItemText(nIDC, s.GetString());
    }
}

void DDX_Text(CDataExchange* pDX, int nIDC, double& value) {
    if (pDX->m_bSaveAndValidate) {
        CString s;
        pDX->m_pDlgWnd->GetDlgItemText(nIDC, s);
        bool ok = false;
        const double v = Q(s.Trim()).toDouble(&ok);
        if (!ok) {
            AfxMessageBox("Please enter a number.", MB_ICONEXCLAMATION);
            pDX->Fail();
            return;
        }
        value = v;
    } else {
        CString s;
        s.Format("%.*g", 15, value);
        pDX->m_pDlgWnd->SetDlgItemText(nIDC, s.GetString());
    }
}

void DDX_Check(CDataExchange* pDX, int nIDC, int& value) {
    if (pDX->m_bSaveAndValidate)
        value = int(pDX->m_pDlgWnd->IsDlgButtonChecked(nIDC));
    else
        pDX->m_pDlgWnd->CheckDlgButton(nIDC, UINT(value));
}

void DDX_Radio(CDataExchange* pDX, int nIDC, int& value) {
    CWnd* first = pDX->m_pDlgWnd->GetDlgItem(nIDC);
    QWidget* fw = first ? WidgetOf(first->m_hWnd) : nullptr;
    if (!fw || !fw->parentWidget())
        return;
    // The group runs from the first radio to the next WS_GROUP control or non-radio.
    std::vector<HWND> group;
    bool started = false;
    for (QObject* o : fw->parentWidget()->children()) {
        if (!o->isWidgetType())
            continue;
        HWND h = AfxHandleFromWidget(static_cast<QWidget*>(o));
        WindowData* d = Lookup(h);
        if (!d)
            continue;
        if (h == first->m_hWnd) {
            started = true;
        } else if (started && (d->kind != KRadio || (d->style & WS_GROUP))) {
            break;
        }
        if (started)
            group.push_back(h);
    }
    if (pDX->m_bSaveAndValidate) {
        value = -1;
        for (size_t i = 0; i < group.size(); ++i)
            if (auto* b = dynamic_cast<CButton*>(CWnd::FromHandle(group[i])); b && b->GetCheck())
                value = int(i);
    } else {
        for (size_t i = 0; i < group.size(); ++i)
            if (auto* b = dynamic_cast<CButton*>(CWnd::FromHandle(group[i])))
                b->SetCheck(int(i) == value ? BST_CHECKED : BST_UNCHECKED);
    }
}
