#include "zorhost/services/AxisRecords.h"

#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "zorhost/model/VarStore.h"
#include "zorhost/services/HostDeviceHelper.h"
#include "zorhost/services/HostTransferService.h"
#include "zorhost/sim/DriveDirectory.h"

#include <cmath>
#include <set>

namespace zorhost {

namespace {

constexpr int kModifyNever = 2;
constexpr int kModifyNotListed = 3;

IHostAxis* FindAxis(IVarStore* store, const CString& name) {
    IHostAxisList* axes = store != nullptr ? store->GetAxisList() : nullptr;
    if (axes == nullptr || !axes->IsValid())
        return nullptr;
    for (int i = 0; i < axes->GetCount(); ++i) {
        IHostAxis* axis = axes->GetAt(i);
        CString n;
        if (axis != nullptr) {
            axis->GetName(n);
            if (n == name)
                return axis;
        }
    }
    return nullptr;
}

void CollectMembers(IGroupNode* group, IVarStore* store, std::set<IVarObjEx*>& seen,
                    std::vector<IVarObjEx*>& vars) {
    if (group == nullptr)
        return;
    for (int i = 0; i < group->GetMemberCount(); ++i) {
        CString key;
        if (!group->GetMemberAt(i, key))
            continue;
        IVarObjEx* var = store->FindByCode(key);
        if (var != nullptr && seen.insert(var).second)
            vars.push_back(var);
    }
    for (int i = 0; i < group->GetChildCount(); ++i)
        CollectMembers(group->GetChildAt(i), store, seen, vars);
}

bool Copyable(IVarObjEx* var) {
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    return attr != nullptr && attr->IsTransferable() && attr->GetModifyMode() != kModifyNever &&
           attr->GetModifyMode() != kModifyNotListed;
}

} // namespace

bool CompareAxisParameters(IHostDeviceModule* source, IHostDeviceModule* target,
                           const CString& sourceAxis, const CString& targetAxis,
                           std::vector<IRWDataItem*>& rows) {
    IVarStore* from = source != nullptr ? source->GetVarList() : nullptr;
    IVarStore* to = target != nullptr ? target->GetVarList() : nullptr;
    IHostAxis* fromAxis = FindAxis(from, sourceAxis);
    IHostAxis* toAxis = FindAxis(to, targetAxis);
    if (fromAxis == nullptr || toAxis == nullptr || toAxis->GetGroupSet() == nullptr)
        return false;
    std::vector<IVarObjEx*> vars;
    std::set<IVarObjEx*> seen;
    IGroupSet* groups = toAxis->GetGroupSet();
    for (int i = 0; i < groups->GetCount(); ++i)
        CollectMembers(groups->GetAt(i), to, seen, vars);
    for (IVarObjEx* var : vars) {
        if (!Copyable(var))
            continue;
        const UINT address = var->GetInstanceAddress();
        IVarObjEx* pattern =
            from->FindByAddress(address - toAxis->GetAddressBase() + fromAxis->GetAddressBase());
        if (!Copyable(pattern))
            continue;
        const Variant wanted = pattern->GetValue();
        const Variant held = var->GetValue();
        double a = 0, b = 0;
        if (!VariantToRaw(wanted, a))
            continue; // nothing known to copy
        if (VariantToRaw(held, b) && std::fabs(a - b) <= 1e-9)
            continue;
        auto* row = new CParamRecord;
        row->SetRecordAddress(address);
        row->SetRecordType(var->GetAttr()->GetDataType());
        row->SetRecordValue(wanted);
        row->SetRecordOldValue(held);
        rows.push_back(row);
    }
    return true;
}

bool WriteAxisRecords(CHostDeviceHelper& helper, IHostDeviceModule* target,
                      const std::vector<IRWDataItem*>& rows, std::vector<CString>& errors) {
    if (target == nullptr)
        return false;
    CString key;
    target->GetModuleKey(key);
    IVarStore* store = target->GetVarList();
    const std::shared_ptr<sim::DriveLink> link = helper.Drives().FindLink(key);
    bool ok = true;
    for (IRWDataItem* row : rows) {
        if (row == nullptr)
            continue;
        const UINT address = row->GetRecordAddress();
        IVarObjEx* var = store != nullptr ? store->FindByAddress(address) : nullptr;
        IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
        const int type = attr != nullptr ? attr->GetDataType() : 0;
        Variant taken;
        if (!helper.WriteVarDirect(key, address, type, row->GetRecordValue(), taken, errors, 1,
                                   CHostTransferService::kTimeout_ms,
                                   CHostTransferService::kTries)) {
            ok = false;
            if (link && !helper.Drives().Serves(key, link))
                break; // closed while the write waited: the module and its rows are gone
            continue;
        }
        if (link && !helper.Drives().Serves(key, link))
            return false;
        // The host's variable shows what the drive took, as after a read.
        if (var != nullptr)
            static_cast<model::CVarObj*>(var)->StoreRead(taken);
    }
    return ok;
}

} // namespace zorhost
