// CGridItem: the value cell of a row of the write dialog: a drop-down list of options
// that tells its dialog when the user picked one.
#pragma once

#include <skin/ZorSkin.h>

class CWriteVarDialog;

class CGridItem : public CZorSkinPGridItem {
public:
    explicit CGridItem(CWriteVarDialog* dialog = nullptr, const char* value = "")
        : CZorSkinPGridItem(value), m_pDialog(dialog) {}
    CWriteVarDialog* GetDialog() const { return m_pDialog; }

protected:
    void OnValueChanged() override;

private:
    CWriteVarDialog* m_pDialog;
};
