#include "values/GridItem.h"

#include "values/WriteVarDialog.h"

void CGridItem::OnValueChanged() {
    CZorSkinPGridItem::OnValueChanged();
    // The grid keeps its in-place list on the chosen text; join all fields anew.
    if (m_pDialog != nullptr)
        m_pDialog->RecalculateValue(GetRow());
}
