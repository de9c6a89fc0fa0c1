// Device lists: drives named by line id and product id in a plain line file of the
// install's Config folder ("OldProtocolDevice.ini", "HalfDuplexDevice.ini").
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"

#include <afx/CString.h>

// One line of a device list.
class COldProtocolDevice {
public:
    COldProtocolDevice() = default;
    COldProtocolDevice(const CString& name, DWORD lineId, DWORD productId)
        : m_strName(name), m_dwLineID(lineId), m_dwProductID(productId) {}
    virtual ~COldProtocolDevice() = default;

    CString m_strName; // kept as read; nothing uses it
    DWORD m_dwLineID = 0;
    DWORD m_dwProductID = 0;
};

// Owns the rows of one device list. Duplicate rows are kept: the row pointer is the key.
class COldProtocolDeviceAgent {
public:
    COldProtocolDeviceAgent() = default;
    virtual ~COldProtocolDeviceAgent();
    COldProtocolDeviceAgent(const COldProtocolDeviceAgent&) = delete;
    COldProtocolDeviceAgent& operator=(const COldProtocolDeviceAgent&) = delete;

    // Takes ownership; a refused row is deleted.
    void AddDevice(COldProtocolDevice* device);
    void RemoveAll();
    int GetCount() const { return m_devices.GetCount(); }
    COldProtocolDevice* GetAt(int index) const { return m_devices.GetAt(index); }
    // 1 when a row has both numbers.
    BOOL IsOldProtocolDevice(DWORD lineId, DWORD productId) const;

    // Parses one line by the list's rules; null when the line is no device line.
    static COldProtocolDevice* ParseLine(const CString& line, IHostVarUtil* util);

private:
    CTemplateList<COldProtocolDevice*, COldProtocolDevice*> m_devices;
};
