#include "pages/PageAccessFrame.h"

#include "table/VarTable.h"

IHostDeviceModule* CPageAccessFrame::GetModule() {
    return m_pFrame != nullptr ? m_pFrame->GetModule() : nullptr;
}

void CPageAccessFrame::ApplyAccessLevel(IHostDeviceModule* module, int level) {
    if (m_pFrame != nullptr)
        m_pFrame->ApplyAccessLevel(module, level);
}

void CPageAccessFrame::ApplyAccessLevelToAll(int level) {
    if (m_pFrame != nullptr)
        m_pFrame->ApplyAccessLevelToAll(level);
}
