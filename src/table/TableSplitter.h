// The bars between the frame's tree, stacked area and description box. A drag resizes the
// neighbour that keeps its width in the layout, then asks the frame to lay out again.
#pragma once

#include <afx/afxwin.h>

class CTableSplitter : public CWnd {
public:
    // `neighbourId`: the control whose width the bar sets; `neighbourOnLeft` says on which
    // side of the bar it stands.
    void Setup(UINT neighbourId, BOOL neighbourOnLeft) {
        m_neighbourId = neighbourId;
        m_neighbourOnLeft = neighbourOnLeft;
    }
    // Moves the bar by `dx` pixels: the neighbour grows or shrinks, never below the
    // minimum width, and the parent gets UM_SPLITTER_MOVED.
    void MoveBy(int dx);

    static constexpr int kMinWidth = 40;

protected:
    void OnLButtonDown(UINT nFlags, CPoint point) override;
    void OnMouseMove(UINT nFlags, CPoint point) override;
    void OnLButtonUp(UINT nFlags, CPoint point) override;

private:
    UINT m_neighbourId = 0;
    BOOL m_neighbourOnLeft = TRUE;
    BOOL m_dragging = FALSE;
    int m_startX = 0; // screen x where the drag began
};
