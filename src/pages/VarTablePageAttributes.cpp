// "更新属性" of both list pages: the attribute sync of the frame, behind the checks that
// the device supports it, answers, and isn't busy sampling.
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "pages/PageText.h"
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"
#include "values/ValueText.h"

namespace {
constexpr UINT IDS_NO_ATTRIBUTE_UPDATE = 173;
constexpr UINT IDS_OSCILLOSCOPE_RUNNING = 150;
constexpr UINT IDS_DEVICE_OFFLINE = 2038;
constexpr const char* kSyncQuestion = "是否要从驱动器同步参数？";
} // namespace

void CVarTablePageBase::UpdateAttributes() {
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    if (module == nullptr)
        return;
    const HWND owner = GetSafeHwnd();
    // The second page shows its button for every device, so this refusal is its to give.
    if (!m_pTable->SupportsAttributeUpdate()) {
        MessageBox(owner, pagetext::LoadString(IDS_NO_ATTRIBUTE_UPDATE).GetString(), "",
                   MB_OK | MB_ICONWARNING);
        return;
    }
    if (!module->IsOnline()) {
        MessageBox(owner, pagetext::LoadString(IDS_DEVICE_OFFLINE).GetString(), "",
                   MB_OK | MB_ICONWARNING);
        return;
    }
    if (m_pTable->IsOscilloscopeBusy(module)) {
        MessageBox(owner, pagetext::LoadString(IDS_OSCILLOSCOPE_RUNNING).GetString(), "", MB_OK);
        return;
    }
    if (MessageBox(owner, VarText::Translate(kSyncQuestion).GetString(), "",
                   MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    m_pTable->StartAttributeUpload();
}
