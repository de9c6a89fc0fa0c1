// Internal: the tree widget.
#pragma once

#include "controls_p.h"

#include <QTreeWidget>

namespace afxi {

class AfxTree : public QTreeWidget {
    Q_OBJECT
public:
    AfxTree(DWORD style, QWidget* parent);
    int m_itemHeight = 0;
    CImageList* m_images[3] = {nullptr, nullptr, nullptr};
    void RefreshIcon(QTreeWidgetItem* item);
    void NotifyClick(UINT code);

protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
};

} // namespace afxi
