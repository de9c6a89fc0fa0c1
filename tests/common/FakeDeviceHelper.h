// A recorder over the real host's device helper (`inner`): every call is passed on, named
// writes are kept, and of direct reads and writes what a drive cannot tell (the data type
// asked for, mode, time-out and tries).
#pragma once

#include "module/host/IHostDeviceHelper.h"
#include "module/host/Variant.h"

#include <string>
#include <vector>

class FakeDeviceHelper : public IHostDeviceHelper {
public:
    explicit FakeDeviceHelper(IHostDeviceHelper& real) : inner(real) {}

    struct NamedWrite {
        CString key, name;
        double value = 0;
    };
    struct Write {
        int dataType = 0, mode = 0, timeout_ms = 0, tries = 0;
    };

    IHostDeviceHelper& inner;
    std::vector<NamedWrite> namedWrites;
    std::vector<Write> writes;
    std::vector<int> readTypes;

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
        return inner.GetProtocolKind(module);
    }
    IVarObjEx* FindNamedVar(IHostDeviceModule* module, const CString& name) override {
        return inner.FindNamedVar(module, name);
    }
    BOOL WriteNamedVar(const CString& moduleKey, const CString& name, double value) override {
        namedWrites.push_back({moduleKey, name, value});
        return inner.WriteNamedVar(moduleKey, name, value);
    }
    IFunctionEntry* FindFunctionVar(IHostDeviceModule* module, const CString& name) override {
        return inner.FindFunctionVar(module, name);
    }
    BOOL ReadCsvParamFile(const CString& path, IParamFile* file,
                          IHostDeviceModule* module) override {
        return inner.ReadCsvParamFile(path, file, module);
    }
    BOOL ReadParameter(const CString& key, UINT address, double& value) override {
        return inner.ReadParameter(key, address, value);
    }
    BOOL WriteParameter(const CString& key, UINT address, double value) override {
        return inner.WriteParameter(key, address, value);
    }
    BOOL WriteParameterAs(const CString& key, UINT address, int type, double value) override {
        return inner.WriteParameterAs(key, address, type, value);
    }
    BOOL WriteVarDirect(const CString& key, UINT address, int type, const Variant& value,
                        Variant& result, std::vector<CString>& errors, int mode, int timeout_ms,
                        int tries) override {
        writes.push_back({type, mode, timeout_ms, tries});
        return inner.WriteVarDirect(key, address, type, value, result, errors, mode, timeout_ms,
                                    tries);
    }
    BOOL ReadVarDirect(const CString& key, UINT address, int type, Variant& value, int timeout_ms,
                       int tries) override {
        readTypes.push_back(type);
        return inner.ReadVarDirect(key, address, type, value, timeout_ms, tries);
    }
    double GetUiScale() override { return inner.GetUiScale(); }
};
