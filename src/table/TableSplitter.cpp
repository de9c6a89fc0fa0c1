#include "table/TableSplitter.h"

#include "table/VarTable.h"

void CTableSplitter::MoveBy(int dx) {
    CWnd* parent = GetParent();
    CWnd* neighbour = parent != nullptr ? parent->GetDlgItem(int(m_neighbourId)) : nullptr;
    if (neighbour == nullptr || dx == 0)
        return;
    CRect rc;
    neighbour->GetWindowRect(&rc);
    parent->ScreenToClient(&rc);
    if (m_neighbourOnLeft) {
        const int width = std::max(kMinWidth, rc.Width() + dx);
        neighbour->MoveWindow(rc.left, rc.top, width, rc.Height());
    } else {
        const int width = std::max(kMinWidth, rc.Width() - dx);
        neighbour->MoveWindow(rc.right - width, rc.top, width, rc.Height());
    }
    parent->PostMessage(UM_SPLITTER_MOVED);
}

void CTableSplitter::OnLButtonDown(UINT nFlags, CPoint point) {
    CWnd::OnLButtonDown(nFlags, point);
    ClientToScreen(&point);
    m_startX = point.x;
    m_dragging = TRUE;
    SetCapture();
}

void CTableSplitter::OnMouseMove(UINT nFlags, CPoint point) {
    CWnd::OnMouseMove(nFlags, point);
    SetCursor(LoadCursor(nullptr, IDC_SIZEWE));
}

void CTableSplitter::OnLButtonUp(UINT nFlags, CPoint point) {
    CWnd::OnLButtonUp(nFlags, point);
    if (!m_dragging)
        return;
    m_dragging = FALSE;
    ReleaseCapture();
    ClientToScreen(&point);
    MoveBy(point.x - m_startX);
}
