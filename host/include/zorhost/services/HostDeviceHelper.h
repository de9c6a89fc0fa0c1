// Direct access to the drives and device-specific questions (IHostDeviceHelper). The
// direct reads and writes block until the drive answered or the tries ran out, and may run
// on any thread.
#pragma once

#include "module/host/IHostDeviceHelper.h"
#include "zorhost/sim/DriveLink.h"

#include <atomic>
#include <functional>

namespace zorhost {

namespace sim {
class DriveDirectory;
}
namespace model {
class CDeviceModule;
}

class CHostDeviceHelper : public IHostDeviceHelper {
public:
    // Time-out and tries of the operations whose callers give none.
    static constexpr int kDefaultTimeout_ms = 200;
    static constexpr int kDefaultTries = 3;

    explicit CHostDeviceHelper(sim::DriveDirectory& drives);

    // Language of the failure texts handed back to callers.
    void SetEnglish(bool english) { m_english = english; }
    bool IsEnglish() const { return m_english; }
    // Where the scale of the user interface comes from (the host's text service); 1.0
    // without one.
    void SetUiScaleSource(std::function<double()> source) { m_uiScale = std::move(source); }

    int GetProtocolKind(IHostDeviceModule* module) override;
    IVarObjEx* FindNamedVar(IHostDeviceModule* module, const CString& name) override;
    BOOL WriteNamedVar(const CString& moduleKey, const CString& name, double value) override;
    IFunctionEntry* FindFunctionVar(IHostDeviceModule* module, const CString& name) override;
    // Reads the table into `file`, which must be one the host made; on failure the file
    // keeps its contents and its LastError says which line was wrong.
    BOOL ReadCsvParamFile(const CString& path, IParamFile* file,
                          IHostDeviceModule* module) override;
    BOOL ReadParameter(const CString& moduleKey, UINT address, double& value) override;
    BOOL WriteParameter(const CString& moduleKey, UINT address, double value) override;
    BOOL WriteParameterAs(const CString& moduleKey, UINT address, int dataType,
                          double value) override;
    BOOL WriteVarDirect(const CString& moduleKey, UINT address, int dataType, const Variant& value,
                        Variant& result, std::vector<CString>& errors, int mode, int timeout_ms,
                        int tries) override;
    BOOL ReadVarDirect(const CString& moduleKey, UINT address, int dataType, Variant& value,
                       int timeout_ms, int tries) override;
    double GetUiScale() override { return m_uiScale ? m_uiScale() : 1.0; }

    // The typed request behind all of the above: tries until one passes, a refusal comes
    // or the tries are used up; the last result is returned.
    sim::LinkResult Read(const CString& moduleKey, UINT address, device::DataType type, double& raw,
                         int timeout_ms, int tries);
    sim::LinkResult Write(const CString& moduleKey, UINT address, device::DataType type, double raw,
                          int timeout_ms, int tries);
    // The modules and their links, as the requests above find them.
    sim::DriveDirectory& Drives() { return m_drives; }
    // "H06-03: <reason>", or the reason alone when no parameter lies at `address`.
    CString FailureText(model::CDeviceModule* module, UINT address,
                        const sim::LinkResult& result) const;

private:
    // Data type of the parameter at `address`, Unknown when there is none.
    static device::DataType TypeAt(model::CDeviceModule* module, UINT address);

    sim::DriveDirectory& m_drives;
    std::atomic<bool> m_english{false};
    std::function<double()> m_uiScale;
};

// Converts a variant to the raw number it carries; false for empty and non-numeric text.
bool VariantToRaw(const Variant& value, double& raw);
// The variant of tag `type` that holds `raw`.
Variant RawToVariant(device::DataType type, double raw);

} // namespace zorhost
