#include "zorhost/services/HostDeviceHelper.h"

#include "zorhost/files/ParamFile.h"
#include "zorhost/files/ParamTableReader.h"

#include "module/host/IFunctionTable.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/sim/DriveDirectory.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zorhost {

using device::DataType;

bool VariantToRaw(const Variant& v, double& raw) {
    switch (v.vt) {
    case VT_I2:
        raw = v.iVal;
        return true;
    case VT_I4:
        raw = v.lVal;
        return true;
    case VT_R4:
        raw = v.fltVal;
        return true;
    case VT_R8:
        raw = v.dblVal;
        return true;
    case VT_DATE:
        raw = v.date;
        return true;
    case VT_BOOL:
        raw = v.boolVal != 0 ? 1 : 0;
        return true;
    case VT_I1:
        raw = v.cVal;
        return true;
    case VT_UI1:
        raw = v.bVal;
        return true;
    case VT_UI2:
        raw = v.uiVal;
        return true;
    case VT_UI4:
        raw = v.ulVal;
        return true;
    case VT_BSTR: {
        const std::string& s = v.bstrVal.str();
        char* end = nullptr;
        raw = std::strtod(s.c_str(), &end);
        while (end && (*end == ' ' || *end == '\t'))
            ++end;
        return !s.empty() && end && *end == '\0' && std::isfinite(raw);
    }
    default:
        return false;
    }
}

Variant RawToVariant(DataType type, double raw) {
    switch (type) {
    case DataType::Int8:
        return Variant::I1(std::int8_t(raw));
    case DataType::UInt8:
        return Variant::UI1(std::uint8_t(raw));
    case DataType::Int16:
        return Variant::I2(std::int16_t(raw));
    case DataType::UInt16:
        return Variant::UI2(std::uint16_t(raw));
    case DataType::Int32:
        return Variant::I4(std::int32_t(raw));
    case DataType::UInt32:
        return Variant::UI4(std::uint32_t(raw));
    case DataType::Float:
        return Variant::R4(float(raw));
    case DataType::Double:
        return Variant::R8(raw);
    case DataType::Date:
        return Variant::Date(raw);
    case DataType::Bool:
        return Variant::Bool(raw != 0);
    case DataType::String:
    case DataType::Unknown:
        break;
    }
    return Variant();
}

CHostDeviceHelper::CHostDeviceHelper(sim::DriveDirectory& drives) : m_drives(drives) {}

namespace {

// The module object of this host behind an interface pointer, found by its key so that a
// foreign object is never taken for ours.
model::CDeviceModule* Own(sim::DriveDirectory& drives, IHostDeviceModule* module) {
    if (!module)
        return nullptr;
    CString key;
    module->GetModuleKey(key);
    model::CDeviceModule* own = drives.FindModule(key);
    return own == module ? own : nullptr;
}

} // namespace

int CHostDeviceHelper::GetProtocolKind(IHostDeviceModule* module) {
    model::CDeviceModule* own = Own(m_drives, module);
    if (!own)
        return module ? 0 : -1;
    return int(own->Store().Device().product.accessModel);
}

IVarObjEx* CHostDeviceHelper::FindNamedVar(IHostDeviceModule* module, const CString& name) {
    model::CDeviceModule* own = Own(m_drives, module);
    if (!own)
        return nullptr;
    const device::NamedVariable* v = own->Store().Device().FindNamedVariable(name.str());
    return v ? own->Store().FindByAddress(v->address) : nullptr;
}

BOOL CHostDeviceHelper::WriteNamedVar(const CString& moduleKey, const CString& name, double value) {
    model::CDeviceModule* module = m_drives.FindModule(moduleKey);
    if (!module)
        return 0;
    const device::NamedVariable* v = module->Store().Device().FindNamedVariable(name.str());
    if (!v)
        return 0;
    return Write(moduleKey, v->address, v->dataType, value, kDefaultTimeout_ms, kDefaultTries).ok()
               ? 1
               : 0;
}

IFunctionEntry* CHostDeviceHelper::FindFunctionVar(IHostDeviceModule* module, const CString& name) {
    model::CDeviceModule* own = Own(m_drives, module);
    if (!own)
        return nullptr;
    IFunctionTable* table = own->Store().GetFunctionTable(0);
    return table ? table->FindFunction(name) : nullptr;
}

BOOL CHostDeviceHelper::ReadCsvParamFile(const CString& path, IParamFile* file,
                                         IHostDeviceModule* module) {
    if (file == nullptr)
        return 0;
    // Only the host makes parameter files.
    auto* own = static_cast<files::CParamFile*>(file);
    std::string error;
    const bool read = files::ReadParamTable(path, *own, module, &error);
    own->SetLastError(read ? std::string() : error);
    return read ? 1 : 0;
}

DataType CHostDeviceHelper::TypeAt(model::CDeviceModule* module, UINT address) {
    if (!module)
        return DataType::Unknown;
    const auto& d = module->Store().Device();
    const std::uint32_t index = d.FindByAddress(address);
    if (index != device::kNoIndex)
        return d.parameters[index].dataType;
    for (const auto& v : d.namedVariables)
        if (v.address == address)
            return v.dataType;
    return DataType::Unknown;
}

sim::LinkResult CHostDeviceHelper::Read(const CString& moduleKey, UINT address, DataType type,
                                        double& raw, int timeout_ms, int tries) {
    const std::shared_ptr<sim::DriveLink> link = m_drives.FindLink(moduleKey);
    if (!link)
        return {sim::LinkStatus::Offline};
    sim::LinkResult r;
    for (int i = 0; i < std::max(tries, 1); ++i) {
        r = sim::ReadRaw(*link, address, type, raw, timeout_ms);
        if (!r.transient())
            break;
    }
    return r;
}

sim::LinkResult CHostDeviceHelper::Write(const CString& moduleKey, UINT address, DataType type,
                                         double raw, int timeout_ms, int tries) {
    const std::shared_ptr<sim::DriveLink> link = m_drives.FindLink(moduleKey);
    if (!link)
        return {sim::LinkStatus::Offline};
    sim::LinkResult r;
    for (int i = 0; i < std::max(tries, 1); ++i) {
        r = sim::WriteRaw(*link, address, type, raw, timeout_ms);
        if (!r.transient())
            break;
    }
    return r;
}

CString CHostDeviceHelper::FailureText(model::CDeviceModule* module, UINT address,
                                       const sim::LinkResult& result) const {
    const bool en = m_english;
    if (!module)
        return CString(en ? "no such module" : "模块不存在");
    std::string text = sim::LinkResultText(result, en);
    const auto& d = module->Store().Device();
    const std::uint32_t index = d.FindByAddress(address);
    if (index != device::kNoIndex)
        text = std::string(d.Code(d.parameters[index])) + ": " + text;
    return CString(text);
}

// The recipe accesses go one request each: a job of a thousand parameters reports each
// failure at once instead of tripling the link's time on a drive that keeps refusing.
BOOL CHostDeviceHelper::ReadParameter(const CString& moduleKey, UINT address, double& value) {
    const DataType type = TypeAt(m_drives.FindModule(moduleKey), address);
    double raw = 0;
    if (!Read(moduleKey, address, type, raw, kDefaultTimeout_ms, 1).ok())
        return 0;
    value = raw;
    return 1;
}

BOOL CHostDeviceHelper::WriteParameter(const CString& moduleKey, UINT address, double value) {
    const DataType type = TypeAt(m_drives.FindModule(moduleKey), address);
    return Write(moduleKey, address, type, value, kDefaultTimeout_ms, 1).ok() ? 1 : 0;
}

BOOL CHostDeviceHelper::WriteParameterAs(const CString& moduleKey, UINT address, int dataType,
                                         double value) {
    return Write(moduleKey, address, DataType(dataType), value, kDefaultTimeout_ms, 1).ok() ? 1 : 0;
}

BOOL CHostDeviceHelper::WriteVarDirect(const CString& moduleKey, UINT address, int dataType,
                                       const Variant& value, Variant& result,
                                       std::vector<CString>& errors, int, int timeout_ms,
                                       int tries) {
    model::CDeviceModule* module = m_drives.FindModule(moduleKey);
    double raw = 0;
    if (!VariantToRaw(value, raw)) {
        errors.push_back(CString(m_english ? "the value is not a number" : "数值无效"));
        return 0;
    }
    const sim::LinkResult r =
        module ? Write(moduleKey, address, DataType(dataType), raw, timeout_ms, tries)
               : sim::LinkResult{sim::LinkStatus::Offline};
    if (!r.ok()) {
        // Found again: the project may have closed while the request waited.
        errors.push_back(FailureText(m_drives.FindModule(moduleKey), address, r));
        return 0;
    }
    result = RawToVariant(DataType(dataType), raw); // the drive echoes what it took
    return 1;
}

BOOL CHostDeviceHelper::ReadVarDirect(const CString& moduleKey, UINT address, int dataType,
                                      Variant& value, int timeout_ms, int tries) {
    double raw = 0;
    if (!Read(moduleKey, address, DataType(dataType), raw, timeout_ms, tries).ok())
        return 0;
    value = RawToVariant(DataType(dataType), raw);
    return 1;
}

} // namespace zorhost
