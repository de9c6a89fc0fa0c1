// Internal: Qt widgets behind the basic controls.
#pragma once

#include "wnd_p.h"

#include <QComboBox>
#include <QPixmap>
#include <QWidget>

namespace afxi {

// Plain windows, dialogs and placeholders.
class AfxWindow : public QWidget {
    Q_OBJECT
public:
    AfxWindow(QWidget* parent, bool dialog);
    bool isDialog() const { return m_dialog; }

private:
    bool m_dialog;
};

class AfxCombo : public QComboBox {
    Q_OBJECT
public:
    explicit AfxCombo(QWidget* parent);
    void showPopup() override;
    void hidePopup() override;
    bool dropped() const { return m_dropped; }
    bool m_confirmed = false;
    int m_droppedWidth = 0;

private:
    bool m_dropped = false;
};

QWidget* MakeTreeWidget(DWORD style, QWidget* parent);
QWidget* MakeListWidget(DWORD style, QWidget* parent);
void ConnectTree(HWND h);
void ConnectList(HWND h);
QPixmap IconPixmap(HICON icon);
QPixmap ImageListPixmap(CImageList* list, int index);

} // namespace afxi
