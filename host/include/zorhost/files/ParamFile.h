// The host's parameter file object (IParamFile) and its variable table (IParamFileTable).
//
// A file table is self-contained: every variable in it carries its own copy of the
// attributes, so a file outlives the module it was made from, and a file read from disk
// needs no module at all. The byte form (.zorparam) is described in
// host/src/files/ZORPARAM_FORMAT.md; ParamFileCodec.h reads and writes it.
#pragma once

#include "module/host/IHostAxisList.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "zorhost/model/Groups.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace zorhost::files {

// Attributes held by value: what a file read from disk gives its variables. When the file
// is bound to a module that knows the parameter, the meaning of its value (enumerations,
// bits) and its catalog come from the module's attribute.
struct AttrFields {
    CString code, name, unit, groupText, infoText;
    UINT address = 0;
    int dataType = 0;
    int decimals = 0;
    int valueLength = 2;
    Variant factoryValue, minValue, maxValue;
    BOOL minLinked = 0, maxLinked = 0;
    int modifyMode = 0, effectMode = 1, displayFormat = 0;
    int perUnitBaseId = 0;
    int accessLevel = 0;
    BOOL hiddenForUser = 0, transferable = 1, fixed = 0, changeTracked = 1;

    // Every field of `attr`.
    static AttrFields Of(IVarAttr& attr);
};

class CFileVarAttr : public IVarAttr {
public:
    // `context`: a clone of the bound module's attribute for the same parameter, or null;
    // owned.
    CFileVarAttr(AttrFields fields, IVarAttr* context);
    ~CFileVarAttr() override;
    CFileVarAttr(const CFileVarAttr&) = delete;
    CFileVarAttr& operator=(const CFileVarAttr&) = delete;

    const AttrFields& Fields() const { return m_f; }

    void GetCode(CString& code) override { code = m_f.code; }
    void GetName(CString& name) override { name = m_f.name; }
    void GetUnit(CString& unit) override { unit = m_f.unit; }
    UINT GetAddress() override { return m_f.address; }
    int GetDataType() override { return m_f.dataType; }
    int GetDecimals() override { return m_f.decimals; }
    int GetValueLength() override { return m_f.valueLength; }
    Variant GetFactoryValue() override { return m_f.factoryValue; }
    Variant GetMinValue() override { return m_f.minValue; }
    Variant GetMaxValue() override { return m_f.maxValue; }
    BOOL IsMinLinked() override { return m_f.minLinked; }
    BOOL IsMaxLinked() override { return m_f.maxLinked; }
    int GetModifyMode() override { return m_f.modifyMode; }
    int GetEffectMode() override { return m_f.effectMode; }
    int GetDisplayFormat() override { return m_f.displayFormat; }
    IValueInfo* GetValueInfo() override;
    int GetPerUnitBaseId() override { return m_f.perUnitBaseId; }
    int GetAccessLevel() override { return m_f.accessLevel; }
    void SetAccessLevel(int level) override { m_f.accessLevel = level; }
    BOOL IsHiddenForUser() override { return m_f.hiddenForUser; }
    BOOL IsTransferable() override { return m_f.transferable; }
    BOOL IsFixed() override { return m_f.fixed; }
    BOOL IsChangeTracked() override { return m_f.changeTracked; }
    void GetGroupText(CString& text) override { text = m_f.groupText; }
    void GetInfoText(CString& text) override { text = m_f.infoText; }
    IVarCatalog* GetOwnerCatalog() override;
    IVarAttr* Clone() override;

private:
    AttrFields m_f;
    IVarAttr* m_context;
};

class CParamFileTable;

// The axes of a file table are those added to its fixed group root.
class CFileAxisList : public IHostAxisList {
public:
    explicit CFileAxisList(CParamFileTable& table) : m_table(table) {}
    BOOL IsValid() override;
    int GetCount() override;
    IHostAxis* GetAt(int index) override;

private:
    CParamFileTable& m_table;
};

class CParamFileTable : public IParamFileTable {
public:
    CParamFileTable();
    ~CParamFileTable() override;
    CParamFileTable(const CParamFileTable&) = delete;
    CParamFileTable& operator=(const CParamFileTable&) = delete;

    // IVarStore
    int GetCount() override { return int(m_vars.size()); }
    IVarObjEx* GetAt(int index) override;
    IVarObjEx* FindByCode(const CString& key) override;
    IVarObjEx* FindByAddress(UINT address) override;
    IGroupSet* GetGroupRoot(int which) override;
    IHostAxisList* GetAxisList() override { return &m_axisList; }
    IFunctionTable* GetFunctionTable(int) override { return nullptr; }
    IHostDeviceModule* GetOwnerModule() override { return nullptr; }
    IVarCatalog* GetStoreCatalog() override { return nullptr; }
    const BYTE* GetElecLabel() override;
    UINT GetElecLabelSize() override { return UINT(m_label.size()); }
    void GetVersionText(CString& version) override { version = m_version; }

    // IParamFileTable
    void CopyFrom(IVarStore* store) override;
    void SetVersionText(const CString& version) override { m_version = version; }
    // Refuses null and a variable whose instance key the table holds already. The table
    // keeps a copy of the attribute, so the variable no longer depends on its source.
    BOOL AddVar(IVarObjEx* var) override;

    // Host side.
    void SetLabel(std::vector<BYTE> label) { m_label = std::move(label); }
    const std::vector<BYTE>& Label() const { return m_label; }
    model::CGroupSet& Fixed() { return *m_fixed; }
    model::CGroupSet& Custom() { return *m_custom; }
    // Takes a variable whose attribute the table owns already (`attr`, may be null).
    BOOL Adopt(std::unique_ptr<IVarObjEx> var, std::unique_ptr<IVarAttr> attr);
    // Exchanges all contents with `other`.
    void Swap(CParamFileTable& other);
    // Lets the group sets (and those of the axes) take variables out with their groups;
    // again after axes were added.
    void BindSets();

private:
    void DropVar(const CString& key);
    void Reindex();
    void Index(size_t i, std::string key);
    void Take(std::string key, std::unique_ptr<IVarObjEx> var, std::unique_ptr<IVarAttr> attr);

    std::vector<std::unique_ptr<IVarObjEx>> m_vars;
    std::vector<std::unique_ptr<IVarAttr>> m_attrs;            // not by index: a clone may lack one
    std::unordered_map<std::string, size_t> m_byKey, m_byCode; // first of each
    std::unordered_map<UINT, size_t> m_byAddress;
    std::unique_ptr<model::CGroupSet> m_fixed, m_custom;
    CFileAxisList m_axisList;
    std::vector<BYTE> m_label;
    CString m_version;
};

class CParamFile : public IParamFile {
public:
    // The most the reader takes in: a file beyond this is refused before it is read.
    static constexpr std::int64_t kMaxFileBytes = 256ll * 1024 * 1024;

    CParamFile();
    ~CParamFile() override;

    void Release() override { delete this; }
    BOOL SerializeTo(IMemoryStream* stream) override;
    const BYTE* GetElecLabel() override;
    UINT GetElecLabelSize() override { return UINT(m_label.size()); }
    void SetElecLabel(const BYTE* label, UINT size) override;
    void SetAccessLevel(int level) override { m_accessLevel = level; }
    void SetVersionText(const CString& version) override { m_version = version; }
    BOOL Open(const CString& path) override;
    BOOL Save(const CString& path) override;
    IParamFileTable* GetVarList() override { return &m_table; }
    void LoadContext(IHostDeviceModule* module) override { m_context = module; }

    // Host side.
    int AccessLevel() const { return m_accessLevel; }
    const CString& VersionText() const { return m_version; }
    IHostDeviceModule* Context() const { return m_context; }
    CParamFileTable& Table() { return m_table; }
    // The object as .zorparam bytes.
    std::string ToBytes();
    // Replaces the object by `bytes`; on failure the object is left as it was and
    // `error` says where the bytes went wrong.
    bool FromBytes(const std::string& bytes, std::string* error);
    // Exchanges all contents but the bound module with `other`.
    void Swap(CParamFile& other);
    // Why the last Open, Save or table read failed; empty after a success.
    const std::string& LastError() const { return m_error; }
    void SetLastError(std::string error) { m_error = std::move(error); }
    // The label and version as a table file states them (the table reader).
    void SetLabel(std::vector<BYTE> label) { m_label = std::move(label); }

private:
    CParamFileTable m_table;
    std::vector<BYTE> m_label;
    CString m_version;
    int m_accessLevel = 0;
    IHostDeviceModule* m_context = nullptr;
    std::string m_error;
};

// Replaces `path` with `bytes` as every save does (AfxReplaceFile): a failure leaves the
// old file whole and `error` gets the system's reason.
bool WriteFileAtomically(const CString& path, const std::string& bytes, std::string* error);
// The whole file, at most `maxBytes`; false with the reason otherwise.
bool ReadWholeFile(const CString& path, std::int64_t maxBytes, std::string& bytes,
                   std::string* error);

} // namespace zorhost::files
