// The one stand-in for the host's device helper that suites share. Over the real host's
// helper (`inner`) it passes every call on and records the writes; on its own it answers
// direct reads and writes as the test scripts them, and nothing else.
#pragma once

#include "module/host/IHostDeviceHelper.h"
#include "module/host/Variant.h"

#include <map>
#include <string>
#include <vector>

class FakeDeviceHelper : public IHostDeviceHelper {
public:
    FakeDeviceHelper() = default;
    explicit FakeDeviceHelper(IHostDeviceHelper& real) : inner(&real) {}

    struct NamedWrite {
        CString key, name;
        double value = 0;
    };
    struct Write {
        CString moduleKey;
        UINT address = 0;
        int dataType = 0;
        Variant value;
        int mode = 0, timeout_ms = 0, tries = 0;
    };
    struct Read {
        UINT address = 0;
        int dataType = 0;
    };

    IHostDeviceHelper* inner = nullptr;
    // Without `inner`: what direct writes do (accept, or refuse with these texts), and the
    // values the drive holds for direct reads (an address not here fails to read).
    bool acceptWrites = true;
    std::vector<CString> refusalTexts;
    std::map<UINT, Variant> driveValues;

    std::vector<NamedWrite> namedWrites;
    std::vector<Write> writes;
    std::vector<Read> reads;

    // The named writes in order, as "name=value".
    std::vector<std::string> NamedWriteLog() const {
        std::vector<std::string> log;
        for (const NamedWrite& w : namedWrites) {
            CString entry;
            entry.Format("%s=%.0f", w.name.GetString(), w.value);
            log.push_back(entry.str());
        }
        return log;
    }

    int GetProtocolKind(IHostDeviceModule* module) override {
        return inner ? inner->GetProtocolKind(module) : 0;
    }
    IVarObjEx* FindNamedVar(IHostDeviceModule* module, const CString& name) override {
        return inner ? inner->FindNamedVar(module, name) : nullptr;
    }
    BOOL WriteNamedVar(const CString& moduleKey, const CString& name, double value) override {
        namedWrites.push_back({moduleKey, name, value});
        return inner ? inner->WriteNamedVar(moduleKey, name, value) : 0;
    }
    IFunctionEntry* FindFunctionVar(IHostDeviceModule* module, const CString& name) override {
        return inner ? inner->FindFunctionVar(module, name) : nullptr;
    }
    BOOL ReadCsvParamFile(const CString& path, IParamFile* file,
                          IHostDeviceModule* module) override {
        return inner ? inner->ReadCsvParamFile(path, file, module) : 0;
    }
    BOOL ReadParameter(const CString& key, UINT address, double& value) override {
        return inner ? inner->ReadParameter(key, address, value) : 0;
    }
    BOOL WriteParameter(const CString& key, UINT address, double value) override {
        return inner ? inner->WriteParameter(key, address, value) : 0;
    }
    BOOL WriteParameterAs(const CString& key, UINT address, int type, double value) override {
        return inner ? inner->WriteParameterAs(key, address, type, value) : 0;
    }
    BOOL WriteVarDirect(const CString& key, UINT address, int type, const Variant& value,
                        Variant& result, std::vector<CString>& errors, int mode, int timeout_ms,
                        int tries) override {
        writes.push_back({key, address, type, value, mode, timeout_ms, tries});
        if (inner)
            return inner->WriteVarDirect(key, address, type, value, result, errors, mode,
                                         timeout_ms, tries);
        if (!acceptWrites) {
            errors.insert(errors.end(), refusalTexts.begin(), refusalTexts.end());
            return 0;
        }
        result = value;
        return 1;
    }
    BOOL ReadVarDirect(const CString& key, UINT address, int type, Variant& value, int timeout_ms,
                       int tries) override {
        reads.push_back({address, type});
        if (inner)
            return inner->ReadVarDirect(key, address, type, value, timeout_ms, tries);
        auto it = driveValues.find(address);
        if (it == driveValues.end())
            return 0;
        value = it->second;
        return 1;
    }
    double GetUiScale() override { return inner ? inner->GetUiScale() : 1.0; }
};
