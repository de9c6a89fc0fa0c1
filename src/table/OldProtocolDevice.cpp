#include "table/OldProtocolDevice.h"

#include "module/host/IHostVarUtil.h"
#include "module/host/Variant.h"

COldProtocolDeviceAgent::~COldProtocolDeviceAgent() {
    RemoveAll();
}

void COldProtocolDeviceAgent::AddDevice(COldProtocolDevice* device) {
    if (!m_devices.Add(device, device))
        delete device;
}

void COldProtocolDeviceAgent::RemoveAll() {
    for (int i = 0; i < m_devices.GetCount(); ++i)
        delete m_devices.GetAt(i);
    m_devices.RemoveAll();
}

BOOL COldProtocolDeviceAgent::IsOldProtocolDevice(DWORD lineId, DWORD productId) const {
    for (int i = 0; i < m_devices.GetCount(); ++i) {
        const COldProtocolDevice* device = m_devices.GetAt(i);
        if (device != nullptr && device->m_dwLineID == lineId && device->m_dwProductID == productId)
            return TRUE;
    }
    return FALSE;
}

namespace {

// Blanks go wherever they stand, then the key with its "=".
CString StripField(CString field, const char* key) {
    field.Remove(' ');
    field.Replace(key, "");
    return field;
}

DWORD ParseNumber(const CString& text, IHostVarUtil* util) {
    Variant value;
    util->ParseVariant(value, text, VT_UI4);
    return value.vt == VT_UI4 ? DWORD(value.ulVal) : 0;
}

} // namespace

COldProtocolDevice* COldProtocolDeviceAgent::ParseLine(const CString& line, IHostVarUtil* util) {
    if (util == nullptr)
        return nullptr;
    // A comment that names all three words counts as a device line, as it always has.
    if (line.Find("dwLineID") < 0 || line.Find("dwProductID") < 0 || line.Find("Name") < 0)
        return nullptr;
    std::vector<CString> fields;
    int start = 0;
    for (;;) {
        const int comma = line.Find(',', start);
        if (comma < 0) {
            fields.push_back(line.Mid(start));
            break;
        }
        fields.push_back(line.Mid(start, comma - start));
        start = comma + 1;
    }
    auto* device = new COldProtocolDevice;
    if (fields.size() == 3) {
        device->m_dwLineID = ParseNumber(StripField(fields[0], "dwLineID="), util);
        device->m_dwProductID = ParseNumber(StripField(fields[1], "dwProductID="), util);
        device->m_strName = StripField(fields[2], "Name=");
    }
    return device;
}
