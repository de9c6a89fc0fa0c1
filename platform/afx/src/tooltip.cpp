#include "wnd_p.h"

#include <afx/afxcmn.h>

#include <QCursor>
#include <QPointer>
#include <QTimer>
#include <QToolTip>

using namespace afxi;

struct CToolTipCtrl::Impl {
    QPointer<QWidget> owner;
    QPointer<QWidget> over;
    QTimer timer;
    int maxWidth = -1;
    CString text;
    bool shown = false;

    void Show() {
        if (!over || text.IsEmpty())
            return;
        QString t = Q(text).toHtmlEscaped().replace("\n", "<br/>");
        // Rich text wraps at the given width; plain tips would grow without end.
        if (maxWidth > 0)
            t = QString("<div style=\"max-width:%1px\">%2</div>").arg(maxWidth).arg(t);
        const QPoint at = over->rect().contains(over->mapFromGlobal(QCursor::pos()))
                              ? QCursor::pos()
                              : over->mapToGlobal(over->rect().center());
        QToolTip::showText(at, t, over);
        shown = true;
    }
};

CToolTipCtrl::CToolTipCtrl() : m_impl(std::make_unique<Impl>()) {
    m_impl->timer.setSingleShot(true);
    m_impl->timer.setInterval(500);
    QObject::connect(&m_impl->timer, &QTimer::timeout, [impl = m_impl.get()] { impl->Show(); });
}

CToolTipCtrl::~CToolTipCtrl() {
    if (m_impl->shown && QToolTip::isVisible())
        QToolTip::hideText();
}

BOOL CToolTipCtrl::Create(CWnd* pOwner) {
    QWidget* w = pOwner ? WidgetOf(pOwner->GetSafeHwnd()) : nullptr;
    if (w == nullptr)
        return FALSE;
    m_impl->owner = w;
    return TRUE;
}

BOOL CToolTipCtrl::IsCreated() const {
    return m_impl->owner ? TRUE : FALSE;
}

int CToolTipCtrl::SetMaxTipWidth(int iWidth) {
    const int old = m_impl->maxWidth;
    m_impl->maxWidth = iWidth;
    return old;
}

void CToolTipCtrl::SetDelayTime(UINT nDelay) {
    m_impl->timer.setInterval(int(nDelay));
}

void CToolTipCtrl::UpdateTipText(const char* text, CWnd* pWnd) {
    if (!m_impl->owner)
        return;
    QWidget* over = pWnd ? WidgetOf(pWnd->GetSafeHwnd()) : m_impl->owner.data();
    m_impl->over = over ? over : m_impl->owner.data();
    m_impl->text = text ? text : "";
    m_impl->timer.stop();
    if (m_impl->shown) {
        QToolTip::hideText();
        m_impl->shown = false;
    }
    if (!m_impl->text.IsEmpty())
        m_impl->timer.start();
}

CString CToolTipCtrl::GetText() const {
    return m_impl->text;
}

BOOL CToolTipCtrl::IsTipShown() const {
    return m_impl->shown && QToolTip::isVisible() ? TRUE : FALSE;
}
