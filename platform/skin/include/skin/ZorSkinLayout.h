// Layout pieces for panels whose texts change length with the language: controls take
// the room their texts need, and a row of tools wraps instead of being cut.
#pragma once

#include <afx/afxcmn.h>
#include <afx/afxwin.h>

#include <vector>

// The size a control needs to show its whole text in its current font; for a box that
// shows no text of its own, its current size.
CSize ZorSkinPreferredSize(CWnd* pCtrl);

// The width a tree needs so that no item's text is cut, expanded or not: indentation,
// icon and text of its widest item.
int ZorSkinTreeContentWidth(CTreeCtrl* pTree);

// One place in a row of tools. Several controls may share a place when only one of
// them is shown at a time; the place is as wide as the widest of them.
struct ZorSkinToolSlot {
    std::vector<UINT> ids;
    int minWidth = 0;   // e.g. a search box, whose text is what a user types
    BOOL label = FALSE; // a caption that belongs with the next place: never ends a row
};

// Places the places left to right inside `area` of `pParent`, each as wide as its controls
// need, `gap` apart; a slot that would cross the right edge starts a new row. Controls of
// a row are centred on the row's height. Returns the bottom of the last row.
int ZorSkinFlowControls(CWnd* pParent, const std::vector<ZorSkinToolSlot>& places,
                        const CRect& area, int gap);
