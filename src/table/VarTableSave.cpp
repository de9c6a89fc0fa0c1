// The frame's parameter files: what a file of a group holds, and the parameter tables of a
// file's table or a group.
#include "module/host/VarAttrCodes.h"
#include "table/VarTable.h"

#include "files/ParamTableWriter.h"
#include "module/ParmiraApp.h"
#include "module/host/IFunctionEntry.h"
#include "module/host/IGroupCategory.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <afx/afxdlgs.h>

#include <algorithm>
#include <set>

namespace {

BOOL IsFactoryGroupName(const CString& name) {
    return name == "H00" || name == "H01";
}

struct FileVarWalk {
    IVarStore* store;
    int level;
    BOOL hideForUser; // level 0 on a device of line 13
    std::set<IVarObjEx*> seen;

    void Collect(IGroupNode* group, std::vector<IVarObjEx*>& list, BOOL includeFactory) {
        if (group == nullptr)
            return;
        CString name;
        group->GetName(name);
        if (!includeFactory && IsFactoryGroupName(name))
            return;
        if (!group->IsGroupVisible() || group->GetAccessLevel() > level)
            return;
        const int members = group->GetMemberCount();
        for (int i = 0; i < members; ++i) {
            CString key;
            if (!group->GetMemberAt(i, key))
                continue;
            IVarObjEx* var = store->FindByCode(key);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            if (attr == nullptr || attr->GetAccessLevel() > level)
                continue;
            if (hideForUser && attr->IsHiddenForUser())
                continue;
            if (seen.insert(var).second)
                list.push_back(var);
        }
        for (int i = 0; i < group->GetChildCount(); ++i)
            Collect(group->GetChildAt(i), list, TRUE);
    }
};

} // namespace

void CVarTable::CollectFileVars(IGroupNode* group, std::vector<IVarObjEx*>& list,
                                BOOL includeFactory) {
    if (group == nullptr || m_pModule == nullptr)
        return;
    IVarStore* store = m_pModule->GetVarList();
    if (store == nullptr)
        return;
    const int level = m_pModule->GetAccessLevel();
    FileVarWalk walk{store, level, level == 0 && IsProductLine13(m_pModule), {}};
    walk.seen.insert(list.begin(), list.end());
    walk.Collect(group, list, includeFactory);
}

static BOOL WriteTableOf(CVarTable& frame, IVarStore* table, IGroupNode* group, const CString& path,
                         BOOL withGuid) {
    if (table == nullptr && group == nullptr)
        return FALSE;
    std::vector<IVarObjEx*> list;
    if (group != nullptr) {
        frame.CollectFileVars(group, list, TRUE);
    } else {
        const int count = table->GetCount();
        list.reserve(size_t(count > 0 ? count : 0));
        for (int i = 0; i < count; ++i)
            list.push_back(table->GetAt(i));
    }
    return WriteParamTableRows(path, list, frame.GetModule(), withGuid);
}

BOOL CVarTable::WriteParamTable(IVarStore* table, IGroupNode* group, const CString& path) {
    return WriteTableOf(*this, table, group, path, FALSE);
}

BOOL CVarTable::WriteParamTableGuid(IVarStore* table, IGroupNode* group, const CString& path) {
    return WriteTableOf(*this, table, group, path, TRUE);
}

// ---------------------------------------------------------------- file saves

namespace {

constexpr UINT IDS_SAVED_TO = 175;
const char* const kSaveFilter = "Zorparam Files(*.zorparam)|*.zorparam|CSV Files (*.csv)|*.csv||";

CString TimeText(const char* format) {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    CString text;
    text.Format(format, int(now.wYear), int(now.wMonth), int(now.wDay), int(now.wHour),
                int(now.wMinute), int(now.wSecond));
    return text;
}

// A group with all its children; `skipFactory` leaves out H00 and H01 at every level.
IGroupNode* CloneTree(IGroupNode* group, BOOL skipFactory) {
    IGroupNode* copy = group->Clone();
    if (copy == nullptr)
        return nullptr;
    for (int i = 0; i < group->GetChildCount(); ++i) {
        IGroupNode* child = group->GetChildAt(i);
        if (child == nullptr)
            continue;
        CString name;
        child->GetName(name);
        if (skipFactory && IsFactoryGroupName(name))
            continue;
        IGroupNode* c = CloneTree(child, skipFactory);
        if (c != nullptr && !copy->AddChild(c))
            delete c;
    }
    return copy;
}

void AddClones(IParamFileTable* table, const std::vector<IVarObjEx*>& list) {
    for (IVarObjEx* var : list) {
        IVarObjEx* copy = var != nullptr ? var->Clone() : nullptr;
        if (copy != nullptr && !table->AddVar(copy))
            delete copy;
    }
}

void ShowSaved(CWnd* owner, const CString& path) {
    CString text;
    text.Format(theApp.LoadText(IDS_SAVED_TO).GetString(), path.GetString());
    MessageBox(owner->GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONINFORMATION);
}

} // namespace

BOOL CVarTable::AskSavePath(const CString& defaultName, CString& path) {
    CFileDialog dialog(FALSE, "zorparam", defaultName.GetString(), OFN_OVERWRITEPROMPT, kSaveFilter,
                       this);
    if (dialog.DoModal() != IDOK)
        return FALSE;
    path = dialog.GetPathName();
    return !path.IsEmpty();
}

IParamFile* CVarTable::BeginFileSave(int level, BOOL tableVersion) {
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr || m_pModule == nullptr) {
        if (file != nullptr)
            file->Release();
        return nullptr;
    }
    CString version;
    m_pModule->GetVersionText(version);
    file->SetVersionText(version);
    file->SetElecLabel(m_pModule->GetElecLabel(), m_pModule->GetElecLabelSize());
    file->SetAccessLevel(level);
    if (tableVersion)
        if (IParamFileTable* table = file->GetVarList())
            table->SetVersionText(version);
    return file;
}

BOOL CVarTable::FinishSave(IParamFile* file, IVarStore* table, IGroupNode* group,
                           const CString& path) {
    if (file == nullptr)
        return FALSE;
    BOOL saved = FALSE;
    const int dot = path.ReverseFind(L'.');
    if (dot >= 0) {
        const CString extension = path.Mid(dot);
        if (extension.CompareNoCase(".csv") == 0)
            saved = WriteParamTable(table, group, path);
        else if (extension.CompareNoCase(".zorparam") == 0)
            saved = file->Save(path);
    }
    if (saved)
        ShowSaved(this, path);
    file->Release();
    return saved;
}

void CVarTable::AddControlFunctions(IParamFileTable* table) {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    IVarStore* store = GetVarList();
    if (helper == nullptr || store == nullptr || table == nullptr)
        return;
    for (int n = 1; n <= 9; ++n) {
        CString name;
        name.Format("ControlFunction%d", n);
        IFunctionEntry* entry = helper->FindFunctionVar(m_pModule, name);
        if (entry == nullptr)
            continue;
        if (IVarObjEx* var = store->FindByAddress(entry->GetAddress()))
            AddClones(table, {var});
    }
}

void CVarTable::CollectCheckedVars(IGroupNode* group, std::vector<IVarObjEx*>& list) {
    IVarStore* store = GetVarList();
    if (group == nullptr || store == nullptr || m_pModule == nullptr)
        return;
    const int level = m_pModule->GetAccessLevel();
    for (int c = 0; c < group->GetChildCount(); ++c) {
        IGroupNode* child = group->GetChildAt(c);
        if (child == nullptr || !child->IsGroupVisible() || child->GetAccessLevel() > level)
            continue;
        for (int i = 0; i < child->GetMemberCount(); ++i) {
            CString key;
            child->GetMemberAt(i, key);
            IVarObjEx* var = store->FindByCode(key);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            if (attr != nullptr && var->IsChecked() && attr->IsTransferable() &&
                attr->GetAccessLevel() <= level &&
                std::find(list.begin(), list.end(), var) == list.end())
                list.push_back(var);
        }
        CollectCheckedVars(child, list);
    }
}

void CVarTable::SaveCheckedVars(IVarStore* store, const CString& path) {
    IParamFile* file = BeginFileSave(m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0, TRUE);
    if (file == nullptr || store == nullptr) {
        if (file != nullptr)
            file->Release();
        return;
    }
    IParamFileTable* table = file->GetVarList();
    std::vector<IVarObjEx*> picked;
    IHostAxisList* axes = store->GetAxisList();
    const int level = m_pModule->GetAccessLevel();
    if (axes != nullptr && axes->IsValid()) {
        for (int a = 0; a < axes->GetCount(); ++a) {
            IHostAxis* axis = axes->GetAt(a);
            IGroupSet* groups = axis != nullptr ? axis->GetGroupSet() : nullptr;
            for (int g = 0; groups != nullptr && g < groups->GetCount(); ++g) {
                IGroupNode* group = groups->GetAt(g);
                if (group == nullptr || !group->IsGroupVisible() || group->GetAccessLevel() > level)
                    continue;
                std::vector<IVarObjEx*> list;
                for (int i = 0; i < group->GetMemberCount(); ++i) {
                    CString key;
                    group->GetMemberAt(i, key);
                    IVarObjEx* var = store->FindByCode(key);
                    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
                    if (attr != nullptr && var->IsChecked() && attr->IsTransferable() &&
                        attr->GetAccessLevel() <= level &&
                        std::find(list.begin(), list.end(), var) == list.end())
                        list.push_back(var);
                }
                CollectCheckedVars(group, list);
                picked.insert(picked.end(), list.begin(), list.end());
            }
        }
    } else {
        for (int i = 0; i < store->GetCount(); ++i) {
            IVarObjEx* var = store->GetAt(i);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            if (attr != nullptr && var->IsChecked() && !attr->IsFixed() &&
                attr->GetModifyMode() != MODIFY_NOT_TRANSFERRED)
                picked.push_back(var);
        }
    }
    if (table != nullptr)
        AddClones(table, picked);
    FinishSave(file, table, nullptr, path);
}

void CVarTable::SaveModule(IVarStore* store, const CString& path) {
    IParamFile* file = BeginFileSave(m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0, FALSE);
    if (file == nullptr)
        return;
    IParamFileTable* table = file->GetVarList();
    if (table != nullptr) {
        table->CopyFrom(store);
        if (!includeFactoryGroups) {
            auto prune = [](IGroupSet* set) {
                for (int i = set != nullptr ? set->GetCount() - 1 : -1; i >= 0; --i) {
                    IGroupNode* group = set->GetAt(i);
                    CString name;
                    if (group != nullptr)
                        group->GetName(name);
                    if (group != nullptr && (IsFactoryGroupName(name) || !group->IsGroupVisible()))
                        set->RemoveGroup(group, TRUE);
                }
            };
            prune(table->GetGroupRoot(0));
            IHostAxisList* axes = table->GetAxisList();
            for (int a = 0; axes != nullptr && a < axes->GetCount(); ++a)
                if (IHostAxis* axis = axes->GetAt(a))
                    prune(axis->GetGroupSet());
        }
        AddControlFunctions(table);
    }
    // The table form comes from the module's own list, untouched by the pruning above.
    FinishSave(file, store, nullptr, path);
}

void CVarTable::SaveAxis(IHostAxis* axis, const CString& path) {
    IParamFile* file = BeginFileSave(m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0, TRUE);
    if (file == nullptr)
        return;
    IParamFileTable* table = file->GetVarList();
    IGroupSet* root = table != nullptr ? table->GetGroupRoot(0) : nullptr;
    IGroupNode* top = root != nullptr && axis != nullptr ? root->NewGroup() : nullptr;
    if (top != nullptr) {
        CString text;
        axis->GetName(text);
        top->SetName(text);
        axis->GetKey(text);
        top->SetDescription(text);
        IGroupSet* groups = axis->GetGroupSet();
        for (int i = 0; groups != nullptr && i < groups->GetCount(); ++i) {
            IGroupNode* group = groups->GetAt(i);
            if (group == nullptr)
                continue;
            CString name;
            group->GetName(name);
            if (!includeFactoryGroups && IsFactoryGroupName(name))
                continue;
            IGroupNode* copy = CloneTree(group, !includeFactoryGroups);
            if (copy != nullptr && !top->AddChild(copy))
                delete copy;
        }
        if (root->AddGroup(top)) {
            std::vector<IVarObjEx*> list;
            CollectFileVars(top, list, TRUE);
            AddClones(table, list);
        } else {
            delete top;
        }
    }
    // The object form whatever the extension.
    if (file->Save(path))
        ShowSaved(this, path);
    file->Release();
}

void CVarTable::SaveGroup(IGroupNode* group, const CString& path) {
    IParamFile* file = BeginFileSave(m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0, TRUE);
    if (file == nullptr)
        return;
    IParamFileTable* table = file->GetVarList();
    const HTREEITEM selected = m_tree.GetSafeHwnd() != nullptr ? m_tree.GetSelectedItem() : nullptr;
    IGroupSet* root = table == nullptr              ? nullptr
                      : IsInCustomSubtree(selected) ? table->GetGroupRoot(1)
                                                    : table->GetGroupRoot(0);
    if (root != nullptr && group != nullptr) {
        IGroupNode* copy = CloneTree(group, FALSE);
        if (copy != nullptr && root->AddGroup(copy)) {
            std::vector<IVarObjEx*> list;
            CollectFileVars(copy, list, TRUE);
            AddClones(table, list);
        } else {
            delete copy;
        }
    }
    AddControlFunctions(table);
    FinishSave(file, nullptr, group, path);
}

void CVarTable::SaveCategory(IGroupCategory* category, IGroupSet* rootSet, const CString& path) {
    IParamFile* file = BeginFileSave(m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0, TRUE);
    if (file == nullptr)
        return;
    IParamFileTable* table = file->GetVarList();
    IGroupSet* root = table != nullptr ? table->GetGroupRoot(0) : nullptr;
    for (int i = 0; category != nullptr && i < category->GetChildCount(); ++i) {
        IGroupNode* child = category->GetChildAt(i);
        if (child == nullptr) { // a broken category saves nothing
            file->Release();
            return;
        }
        CString name;
        child->GetName(name);
        IGroupNode* group = rootSet != nullptr ? rootSet->FindByName(name) : nullptr;
        if (group == nullptr || group->IsGroupFixed() || root == nullptr)
            continue;
        IGroupNode* copy = CloneTree(group, FALSE);
        if (copy != nullptr && root->AddGroup(copy)) {
            std::vector<IVarObjEx*> list;
            CollectFileVars(copy, list, TRUE);
            AddClones(table, list);
        } else {
            delete copy;
        }
    }
    AddControlFunctions(table);
    if (file->Save(path))
        ShowSaved(this, path);
    file->Release();
}

void CVarTable::SaveCheckedAs() {
    if (m_pModule == nullptr)
        return;
    IVarStore* store = GetVarList();
    int checked = 0;
    for (int i = 0; m_pPage2 != nullptr && store != nullptr && i < store->GetCount(); ++i)
        if (IVarObjEx* var = store->GetAt(i))
            checked += var->IsChecked() ? 1 : 0;
    CString name, fileName;
    m_pModule->GetDisplayName(name);
    fileName.Format("%s[%d]_%dVars_%s", name.GetString(), m_pModule->GetAxisIndex(), checked,
                    TimeText("%d-%02d-%02d %02d-%02d-%02d").GetString());
    CString path;
    if (!AskSavePath(fileName, path))
        return;
    SaveCheckedVars(store, path);
}

void CVarTable::SaveSelectionAs() {
    if (m_pModule == nullptr)
        return;
    IVarStore* store = GetVarList();
    const HTREEITEM item = m_tree.GetSafeHwnd() != nullptr ? m_tree.GetSelectedItem() : nullptr;
    auto* record =
        item != nullptr ? reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item)) : nullptr;
    CString path, text;
    if (item == nullptr || (record == nullptr && IsInSubtree(item, m_hAll))) {
        if (AskSavePath("AllVar", path))
            SaveModule(store, path);
        return;
    }
    if (record == nullptr) {
        // Modified, custom, their fixed children or the root: the rows on show, as one
        // group named by the time, that belongs to no set.
        std::vector<IVarObjEx*> rows;
        CollectVisibleRows(rows);
        const CString stamp = TimeText("%d-%02d-%02d_%02d_%02d_%02d");
        CString name;
        m_pModule->GetDisplayName(name);
        text.Format("%s[%d]_%dVars_%s", name.GetString(), m_pModule->GetAxisIndex(),
                    int(rows.size()), stamp.GetString());
        IGroupSet* custom = store != nullptr ? store->GetGroupRoot(1) : nullptr;
        IGroupNode* temp = custom != nullptr ? custom->NewGroup() : nullptr;
        if (temp == nullptr)
            return;
        for (IVarObjEx* var : rows) {
            CString key;
            var->GetInstanceGuid(key);
            temp->AddMember(key);
        }
        temp->SetName(stamp);
        if (AskSavePath(text, path))
            SaveGroup(temp, path);
        delete temp;
        return;
    }
    if (IHostAxis* axis = record->GetAxis()) {
        axis->GetName(text);
        if (AskSavePath(text, path))
            SaveAxis(axis, path);
    } else if (IGroupNode* group = record->GetGroup()) {
        group->GetName(text);
        if (AskSavePath(text, path))
            SaveGroup(group, path);
    } else if (IGroupCategory* category = record->GetCategory()) {
        CString description;
        category->GetName(text);
        category->GetDescription(description);
        text += description;
        if (AskSavePath(text, path))
            SaveCategory(category, store != nullptr ? store->GetGroupRoot(0) : nullptr, path);
    }
}
