#include "files/ZxdExport.h"

#include "module/ParmiraApp.h"
#include "module/host/IFunctionEntry.h"
#include "module/host/IFunctionTable.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWorkerThread.h"
#include "module/host/IMemoryStream.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "values/ValueText.h"

#include <afx/afxfile.h>

#include <zlib.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

void Put16(std::string& out, uint16_t v) {
    out += char(v & 0xFF);
    out += char(v >> 8);
}

void Put32(std::string& out, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        out += char((v >> (8 * i)) & 0xFF);
}

bool IsLongType(int type) {
    switch (type) {
    case 3:
    case 19:
    case 4:
    case 10:
    case 25:
    case 22:
    case 23:
        return true;
    default:
        return false;
    }
}

uint32_t Flags(IVarAttr* attr) {
    uint32_t flags = 0;
    const int decimals = attr->GetDecimals();
    if (decimals >= 1 && decimals <= 4)
        flags |= uint32_t(decimals);
    if (IsLongType(attr->GetDataType()))
        flags |= 0x80;
    if (attr->GetModifyMode() == MODIFY_AT_STANDSTILL)
        flags |= 0x800;
    if (attr->GetModifyMode() == MODIFY_NEVER)
        flags |= 0x1000;
    return flags;
}

void SetChecksum(ZxdRecord& record) {
    BYTE bytes[12];
    for (int w = 0; w < 3; ++w)
        for (int b = 0; b < 4; ++b)
            bytes[w * 4 + b] = BYTE((record[size_t(w)] >> (8 * b)) & 0xFF);
    record[3] = ZxdChecksum(bytes, sizeof bytes);
}

// Steps 2 to 5 of a value record, from the raw value `raw` of `var` with `attr`.
ZxdRecord RecordOf(IVarObjEx* var, IVarAttr* attr, UINT address, const Variant& raw) {
    ZxdRecord record{address, 0, ZxdValueWord(raw), 0};
    if (attr == nullptr)
        return record;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (raw.vt == VT_EMPTY && util != nullptr) {
        // Without a raw value the shown value is scaled back to its raw integer.
        const Variant value = var->GetValue();
        const int decimals = attr->GetDecimals();
        const int type = attr->GetDataType();
        const double d = util->VariantToDouble(value, type, decimals);
        Variant out;
        std::vector<CString> errors;
        if (VarText::ApplyLimits(decimals, type, d, d, value, out, errors) &&
            util->IsRealVariant(out)) {
            Variant result = Variant::OfType(VARTYPE(type));
            util->DoubleToVariant(util->VariantAsDouble(out), result);
            record[2] = ZxdValueWord(result);
        }
    }
    record[1] = Flags(attr);
    SetChecksum(record);
    return record;
}

// The parameter file of the image, as at the beginning of a file save; null without the
// host's object.
IParamFile* BeginImageFile(IHostDeviceModule* module) {
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr || module == nullptr)
        return file;
    file->LoadContext(module);
    CString version;
    module->GetVersionText(version);
    file->SetVersionText(version);
    file->SetElecLabel(module->GetElecLabel(), module->GetElecLabelSize());
    file->SetAccessLevel(module->GetAccessLevel());
    return file;
}

// zlib's compress of the serialised file. It runs on a worker while the user-interface
// thread gives the file and its clones back, which costs about a quarter of the compress.
struct CompressJob {
    const Bytef* data = nullptr;
    uLong size = 0;
    std::vector<Bytef> packed;
    uLongf length = 0;
    int result = Z_OK;

    void Run() {
        length = compressBound(size);
        packed.assign(length, 0);
        result = compress(packed.data(), &length, data, size);
    }
    static UINT Proc(void* job) {
        static_cast<CompressJob*>(job)->Run();
        return 0;
    }
};

} // namespace

uint32_t ZxdChecksum(const BYTE* bytes, size_t size) {
    uint32_t sum = 0;
    for (size_t i = 0; i < size; ++i)
        sum += bytes[i];
    return ~sum;
}

uint32_t ZxdValueWord(const Variant& v) {
    switch (v.vt) {
    case VT_I2:
        return uint32_t(int32_t(v.iVal));
    case VT_I4:
    case VT_UI4:
        return v.ulVal;
    case VT_R4:
        return std::isfinite(v.fltVal) ? uint32_t(int64_t(std::trunc(v.fltVal))) : 0;
    case VT_R8:
        return std::isfinite(v.dblVal) ? uint32_t(int64_t(std::trunc(v.dblVal))) : 0;
    case VT_BOOL:
        return v.boolVal != 0 ? 1 : 0;
    case VT_I1:
        return uint32_t(int32_t(v.cVal));
    case VT_UI1:
        return v.bVal;
    case VT_UI2:
        return v.uiVal;
    default:
        return 0;
    }
}

ZxdRecord BuildValueRecord(IVarObjEx* var) {
    return RecordOf(var, var->GetAttr(), var->GetInstanceAddress(), var->GetRawValue());
}

ZxdRecord BuildVersionRecord(IVarStore* store, IHostDeviceModule* module, const CString& name) {
    IFunctionTable* table = store != nullptr ? store->GetFunctionTable(0) : nullptr;
    IFunctionEntry* entry = table != nullptr ? table->FindFunction(name) : nullptr;
    IVarObjEx* function = entry != nullptr ? entry->GetVar() : nullptr;
    if (function == nullptr)
        return ZxdRecord{0, 0, 0, 0};
    const UINT address = function->GetInstanceAddress();
    IVarObjEx* first = module != nullptr ? store->FindByAddress(address) : nullptr;
    IVarAttr* attr = first != nullptr ? first->GetAttr() : nullptr;
    if (attr == nullptr)
        return ZxdRecord{address, 0, 0, 0};
    CString code;
    attr->GetCode(code);
    IVarObjEx* byCode = store->FindByCode(code);
    if (byCode == nullptr)
        return ZxdRecord{address, 0, 0, 0};
    return RecordOf(byCode, attr, address, byCode->GetRawValue());
}

std::string BuildZxdHeader(const BYTE* label, UINT labelSize, const SYSTEMTIME& time,
                           uint32_t rowCount) {
    BYTE block[32] = {};
    if (label != nullptr)
        std::memcpy(block, label, std::min<size_t>(labelSize, sizeof block));
    std::string summed; // the fields the checksum covers, label as held
    Put16(summed, 1);
    Put16(summed, 0x0100);
    summed.append(reinterpret_cast<const char*>(block), sizeof block);
    Put16(summed, time.wYear);
    summed += char(time.wMonth);
    summed += char(time.wDay);
    summed += char(time.wHour);
    summed += char(time.wMinute);
    summed += char(time.wSecond);
    summed += char(4);
    Put32(summed, rowCount);
    // In the file the label's 16-bit words stand swapped.
    std::string header = summed;
    for (size_t i = 0; i < 32; i += 2)
        std::swap(header[4 + i], header[4 + i + 1]);
    header.append(12, '\0');
    Put32(header, ZxdChecksum(reinterpret_cast<const BYTE*>(summed.data()), summed.size()));
    return header;
}

std::string SerializeRowsAsParamFile(IHostDeviceModule* module,
                                     const std::vector<IVarObjEx*>& rows) {
    std::string bytes;
    IParamFile* file = BeginImageFile(module);
    if (file == nullptr)
        return bytes;
    IParamFileTable* table = file->GetVarList();
    IMemoryStream* stream = table != nullptr ? theApp.CreateMemoryStream() : nullptr;
    if (stream != nullptr) {
        for (IVarObjEx* row : rows) {
            IVarObjEx* clone = row != nullptr ? row->Clone() : nullptr;
            if (clone != nullptr && !table->AddVar(clone))
                delete clone;
        }
        stream->Reset(0);
        stream->SetMode(1);
        if (file->SerializeTo(stream) && stream->GetData() != nullptr)
            bytes.assign(reinterpret_cast<const char*>(stream->GetData()), stream->GetSize());
        stream->Release();
    }
    file->Release();
    return bytes;
}

ZxdResult WriteZxdFile(const std::string& path, IHostDeviceModule* module,
                       const std::vector<IVarObjEx*>& rows) {
    const BYTE* label = nullptr;
    UINT labelSize = 0;
    if (module != nullptr) {
        label = module->GetPrimaryElecLabel();
        labelSize = module->GetPrimaryElecLabelSize();
        if (label == nullptr) {
            label = module->GetElecLabel();
            labelSize = module->GetElecLabelSize();
        }
    }
    SYSTEMTIME now{};
    GetLocalTime(&now);
    std::string out = BuildZxdHeader(label, labelSize, now, uint32_t(rows.size()));
    IVarStore* store = module != nullptr ? module->GetVarList() : nullptr;
    for (const char* name :
         {"FunctionVersion", "FunctionTempVersion", "PerformanceVersion", "PerformanceTempVersion"})
        for (uint32_t word : BuildVersionRecord(store, module, name))
            Put32(out, word);
    out.append(128, '\0');
    out.reserve(out.size() + 16 * rows.size() + 4);
    // One clone per row serves its record and then the parameter file of the image, which
    // takes it over.
    IParamFile* file = BeginImageFile(module);
    IParamFileTable* table = file != nullptr ? file->GetVarList() : nullptr;
    IMemoryStream* stream = table != nullptr ? theApp.CreateMemoryStream() : nullptr;
    for (IVarObjEx* row : rows) {
        IVarObjEx* clone = row != nullptr ? row->Clone() : nullptr;
        if (clone == nullptr)
            continue;
        for (uint32_t word : BuildValueRecord(clone))
            Put32(out, word);
        if (stream == nullptr || !table->AddVar(clone))
            delete clone;
    }
    Put32(out, ZXD_END_MARK);
    // Without its image the file is still a valid export of the records; the caller says so.
    BOOL appended = TRUE;
    if (stream != nullptr) {
        stream->Reset(0);
        stream->SetMode(1);
        CompressJob job;
        if (file->SerializeTo(stream) && stream->GetData() != nullptr && stream->GetSize() > 0) {
            job.data = stream->GetData();
            job.size = uLong(stream->GetSize());
            IHostWorkerThread* worker = theApp.CreateWorkerThread();
            if (worker != nullptr) {
                worker->SetWaitTimeout(-1);
                if (!worker->Start(&CompressJob::Proc, 0, &job)) {
                    worker->Release();
                    worker = nullptr;
                }
            }
            file->Release();
            file = nullptr;
            // Release returns once the compress has ended.
            if (worker != nullptr)
                worker->Release();
            else
                job.Run();
            if (job.result == Z_OK) {
                Put32(out, uint32_t(job.size));
                Put32(out, uint32_t(job.length));
                out.append(reinterpret_cast<const char*>(job.packed.data()), job.length);
            } else {
                appended = FALSE;
            }
        }
        stream->Release();
    }
    if (file != nullptr)
        file->Release();
    if (!AfxReplaceFile(path, out))
        return ZxdResult::OpenFailed;
    return appended ? ZxdResult::Written : ZxdResult::AppendFailed;
}
