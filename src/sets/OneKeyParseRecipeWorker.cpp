// The recipe jobs on the host's worker: one drive request per parameter, reports by
// posted messages only.
#include "groups/Credentials.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostProgressBox.h"
#include "module/host/IHostProgressStep.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWorkerThread.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "values/ValueText.h"

#include <algorithm>

namespace {

// H02-41 of the first axis, written as an unsigned 16-bit number.
constexpr UINT kFactoryCodeAddress = 0x229;
constexpr int kFactoryCodeType = 18;

// The raw number read, in the variable's own type: a bare double would be taken for a
// value already scaled by its decimals, on screen and in the file alike.
Variant ValueOfVar(IVarObjEx* var, double raw) {
    IHostVarUtil* util = theApp.GetVarUtil();
    Variant typed = var->GetValue();
    if (util != nullptr && typed.vt != VT_EMPTY && typed.vt != VT_NULL && typed.vt != VT_BSTR &&
        util->DoubleToVariant(raw, typed))
        return typed;
    return Variant::R8(raw);
}

} // namespace

BOOL COneKeyParseRecipeDialog::StartWorker(HostWorkerProc proc) {
    StopWorker();
    IHostWorkerThread* worker = theApp.CreateWorkerThread();
    if (worker == nullptr)
        return FALSE;
    worker->SetUserData(this);
    worker->SetWaitTimeout(-1);
    worker->RequestStop(0);
    m_pWorker = worker;
    m_bRunning = TRUE;
    if (!worker->Start(proc, 0, worker)) {
        StopWorker();
        return FALSE;
    }
    return TRUE;
}

void COneKeyParseRecipeDialog::StopWorker() {
    if (m_pWorker == nullptr)
        return;
    m_pWorker->RequestStop(1);
    m_pWorker->Release(); // returns once the job has ended
    m_pWorker = nullptr;
    m_bRunning = FALSE;
}

void COneKeyParseRecipeDialog::Post(UINT message, WPARAM kind, LPARAM payload) {
    if (HWND window = m_hWndForWorker.load())
        ::PostMessage(window, message, kind, payload);
}

BOOL COneKeyParseRecipeDialog::WriteFactoryCode(IHostDeviceHelper* helper, const CString& key) {
    return helper->WriteParameterAs(key, kFactoryCodeAddress, kFactoryCodeType,
                                    double(GetFactoryAccessCode()));
}

IHostProgressBox* COneKeyParseRecipeDialog::OpenProgress(const char* text, int highest) {
    IHostProgressBox* box = theApp.CreateProgressBox();
    if (box == nullptr)
        return nullptr;
    if (IHostProgressStep* step = box->NewStep()) {
        step->SetText(VarText::Translate(CString(text)));
        step->SetLowest(0);
        step->SetHighest(highest > 0 ? highest : 1);
        step->SetIncrement(1);
        box->SetMode(0);
        box->AddStep(step);
        delete step;
    }
    // A box left by an earlier job that the window never saw hidden goes now.
    if (IHostProgressBox* old = m_pProgress.exchange(box))
        old->Release();
    Post(UM_RECIPE_PROGRESS, 0, reinterpret_cast<LPARAM>(box));
    return box;
}

UINT COneKeyParseRecipeDialog::BackupProc(void* arg) {
    auto* worker = static_cast<IHostWorkerThread*>(arg);
    auto* dialog = static_cast<COneKeyParseRecipeDialog*>(worker->GetUserData());
    if (dialog != nullptr && !worker->IsStopRequested())
        dialog->RunBackup(worker);
    return 0;
}

UINT COneKeyParseRecipeDialog::RestoreProc(void* arg) {
    auto* worker = static_cast<IHostWorkerThread*>(arg);
    auto* dialog = static_cast<COneKeyParseRecipeDialog*>(worker->GetUserData());
    if (dialog != nullptr && !worker->IsStopRequested())
        dialog->RunRestore(worker);
    return 0;
}

void COneKeyParseRecipeDialog::RunBackup(IHostWorkerThread* worker) {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    IVarStore* vars = m_pModule != nullptr ? m_pModule->GetVarList() : nullptr;
    if (theApp.GetUiService() == nullptr || helper == nullptr || vars == nullptr)
        return;
    CString key;
    m_pModule->GetModuleKey(key);
    IHostProgressBox* box = OpenProgress("正在导出...", vars->GetCount());
    if (box == nullptr)
        return;
    // Without the factory level the drive would refuse the upper levels: nothing is read
    // then, and the file keeps the values on hand.
    if (WriteFactoryCode(helper, key)) {
        for (IVarObjEx* var : SnapshotRows()) {
            if (worker->IsStopRequested())
                break;
            double value = 0;
            if (!helper->ReadParameter(key, var->GetInstanceAddress(), value)) {
                Post(UM_RECIPE_RESULT, 0, reinterpret_cast<LPARAM>(var));
                Post(UM_RECIPE_PROGRESS, 1, reinterpret_cast<LPARAM>(box));
                return;
            }
            var->SetValue(ValueOfVar(var, value));
            Post(UM_RECIPE_PROGRESS, 2, reinterpret_cast<LPARAM>(box));
            if (box->IsCancelled())
                break;
        }
    }
    const BOOL saved = SaveRecipeFile(m_strBackupPath);
    Post(UM_RECIPE_RESULT, 2, saved);
    Post(UM_RECIPE_PROGRESS, 1, reinterpret_cast<LPARAM>(box));
}

void COneKeyParseRecipeDialog::RunRestore(IHostWorkerThread* worker) {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    IHostVarUtil* util = theApp.GetVarUtil();
    IParamFileTable* recipe = m_pRecipe;
    if (recipe == nullptr || theApp.GetUiService() == nullptr || helper == nullptr ||
        m_pModule == nullptr || util == nullptr)
        return;
    CString key;
    m_pModule->GetModuleKey(key);
    IHostProgressBox* box = OpenProgress("正在导入...", recipe->GetCount());
    if (box == nullptr)
        return;
    if (!WriteFactoryCode(helper, key)) {
        Post(UM_RECIPE_RESULT, 4, 0);
        Post(UM_RECIPE_PROGRESS, 1, reinterpret_cast<LPARAM>(box));
        return;
    }
    BuildRecipeRows(recipe);
    Post(UM_RECIPE_ROWS, 0, 0);
    m_failedVars.clear();
    for (IVarObjEx* var : SnapshotRows()) {
        if (worker->IsStopRequested())
            break;
        IVarAttr* attr = var->GetAttr();
        // The drive would refuse these anyway; they are no failure of the restore.
        if (attr == nullptr || attr->GetModifyMode() == MODIFY_NEVER)
            continue;
        const double value = util->VariantAsDouble(var->GetValue());
        if (!helper->WriteParameter(key, var->GetInstanceAddress(), value))
            m_failedVars.push_back(var);
        Post(UM_RECIPE_PROGRESS, 2, reinterpret_cast<LPARAM>(box));
        if (box->IsCancelled())
            break;
    }
    Post(UM_RECIPE_RESULT, 1, reinterpret_cast<LPARAM>(&m_failedVars));
    Post(UM_RECIPE_PROGRESS, 1, reinterpret_cast<LPARAM>(box));
}

BOOL COneKeyParseRecipeDialog::SaveRecipeFile(CString path) {
    const int slash = std::max(path.ReverseFind('/'), path.ReverseFind('\\'));
    if (slash < 0)
        return 0;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr)
        return 0;
    // One missing folder is made; deeper ones are the user's to make.
    const CString folder = path.Left(slash);
    if (!folder.IsEmpty())
        util->MakeDirectory(folder);
    CString lower = path;
    lower.MakeLower();
    if (lower.Find(".zorparam") <= 0)
        path += ".zorparam";
    if (m_pModule == nullptr)
        return 0;
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr)
        return 0;
    CString version;
    m_pModule->GetVersionText(version);
    file->SetVersionText(version);
    file->SetElecLabel(m_pModule->GetElecLabel(), m_pModule->GetElecLabelSize());
    file->SetAccessLevel(m_pModule->GetAccessLevel());
    BOOL saved = 0;
    if (IParamFileTable* table = file->GetVarList()) {
        table->CopyFrom(m_pModule->GetVarList());
        saved = file->Save(path);
    }
    file->Release();
    return saved;
}
