// Service: direct access to a drive and device-specific questions. Implemented by the
// host; got through the query callback under kIID.
//
// The direct reads and writes block until the drive answered or the tries ran out. They
// may be called from a worker thread (recipes) as well as the user-interface thread.
// WriteVarDirect and ReadVarDirect live here, beside the other direct accesses, and
// GetUiScale too: every operation that asks it also requires this service.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

#include <vector>

class IHostDeviceHelper : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("5E8BAFFB-27F9-4BB2-8381-490BA1DD5015");

    // Access model of `module`: 0 level kept in the tool, 1 and 2 level in the drive
    // (2 with a cyclic "Authority" variable). -1 for a null module.
    virtual int GetProtocolKind(IHostDeviceModule* module) = 0;
    // The first variable of `module` whose device-description name is `name`, or null.
    // Host-owned.
    virtual IVarObjEx* FindNamedVar(IHostDeviceModule* module, const CString& name) = 0;
    // Writes `value` to the variable named `name` of module `moduleKey`. Nonzero on
    // success.
    virtual BOOL WriteNamedVar(const CString& moduleKey, const CString& name, double value) = 0;
    // The function entry `name` ("ControlFunction1" ...) of `module`, or null. Host-owned.
    virtual IFunctionEntry* FindFunctionVar(IHostDeviceModule* module, const CString& name) = 0;
    // Fills `file` from the parameter table (.csv) at `path`, bound to `module` (may be
    // null). Nonzero on success.
    virtual BOOL ReadCsvParamFile(const CString& path, IParamFile* file,
                                  IHostDeviceModule* module) = 0;
    // Reads the parameter at `address` of module `moduleKey` into `value`. Nonzero on
    // success.
    virtual BOOL ReadParameter(const CString& moduleKey, UINT address, double& value) = 0;
    // Writes `value` to the parameter at `address`, in the parameter's own data type.
    // Nonzero on success.
    virtual BOOL WriteParameter(const CString& moduleKey, UINT address, double value) = 0;
    // Writes `value` to `address` as data type `dataType`. Nonzero on success.
    virtual BOOL WriteParameterAs(const CString& moduleKey, UINT address, int dataType,
                                  double value) = 0;
    // Writes `value` (data type `dataType`) to `address` of module `moduleKey` at once.
    // `result` receives what the drive reports back (may stay empty); texts of failures
    // are appended to `errors`. `mode` is 1 in every use. Each try waits at most
    // `timeout_ms`. Nonzero on success.
    virtual BOOL WriteVarDirect(const CString& moduleKey, UINT address, int dataType,
                                const Variant& value, Variant& result, std::vector<CString>& errors,
                                int mode, int timeout_ms, int tries) = 0;
    // Reads the variable at `address` (data type `dataType`) of `moduleKey` from the
    // drive into `value`. Nonzero on success.
    virtual BOOL ReadVarDirect(const CString& moduleKey, UINT address, int dataType, Variant& value,
                               int timeout_ms, int tries) = 0;
    // Scale of the user interface: 1.0 at standard size.
    virtual double GetUiScale() = 0;
};

inline constexpr GUID IID_IHostDeviceHelper = IHostDeviceHelper::kIID;
