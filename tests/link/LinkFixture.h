// A host whose one module reaches zordrive-sim over Modbus TCP.
#pragma once

#include "ShippedDevices.h"
#include "SimProcess.h"

#include "module/host/IMessage_ModuleUploadEvent.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/link/RegisterMap.h"
#include "zorhost/services/ParamRecord.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <memory>

namespace linktest {

inline zorhost::link::LinkSettings TcpLink(int port) {
    zorhost::link::LinkSettings s;
    s.kind = zorhost::link::LinkKind::ModbusTcp;
    s.host = "127.0.0.1";
    s.port = port;
    s.timeout_ms = 300;
    s.retries = 1;
    s.reconnectMin_ms = 50;
    s.reconnectMax_ms = 400;
    return s;
}

// A project of one servo at `key` that zordrive-sim serves at `port`.
inline zorhost::ProjectSetup TcpProject(const char* key, int port) {
    zorhost::ProjectSetup setup;
    zorhost::ModuleSetup& m = setup.modules.emplace_back();
    m.deviceFile = "zd3s_servo.json";
    m.key = key;
    m.link = TcpLink(port);
    return setup;
}

// Records for a download, owned here.
struct Records {
    std::vector<std::unique_ptr<zorhost::CParamRecord>> owned;
    std::vector<IRWDataItem*> items;
    void Add(std::uint32_t address, const Variant& value) {
        auto& r = owned.emplace_back(std::make_unique<zorhost::CParamRecord>());
        r->SetRecordAddress(address);
        r->SetRecordValue(value);
        items.push_back(r.get());
    }
    // Every parameter a user may change at any time, with the raw value `raw` gives it.
    template <class Raw> void AddWritable(const zorhost::device::DeviceDescription& d, Raw raw) {
        for (const auto& p : d.parameters)
            if (p.modifyMode == zorhost::device::ModifyMode::Any && p.accessLevel <= 1 &&
                zorhost::sim::RegisterCount(p.dataType) > 0)
                Add(p.address, zorhost::RawToVariant(p.dataType, raw(p)));
    }
};

class TcpHost : public ::testing::Test, public IMessage_ModuleUploadEvent {
protected:
    static constexpr const char* kKey = "SERVO";

    void SetUp() override {
        device = LoadShippedDevice("zd3s_servo.json");
        ASSERT_NE(device, nullptr);
        sim = std::make_unique<SimProcess>(
            std::vector<std::string>{"--tcp", "127.0.0.1:0", "zd3s_servo.json"});
        ASSERT_TRUE(sim->Started()) << "zordrive-sim did not start";
        std::string error;
        ASSERT_TRUE(host.LoadProject(TcpProject(kKey, sim->Port()), &error)) << error;
        host.Services().Get<IHostMessageBus>()->Subscribe(IMessage_ModuleUploadEvent::kIID, this);
    }
    void TearDown() override {
        host.Services().Get<IHostMessageBus>()->Unsubscribe(IMessage_ModuleUploadEvent::kIID, this);
    }
    void OnModuleUploaded(const CString&, BOOL success) override { ends.push_back(success); }
    void OnModuleDownloaded(const CString&, BOOL success) override { downloads.push_back(success); }

    std::uint32_t Address(const char* code) {
        return device->parameters[device->FindByCode(code)].address;
    }

    std::shared_ptr<const zorhost::device::DeviceDescription> device;

    std::unique_ptr<SimProcess> sim;
    zorhost::ReferenceHost host;
    std::vector<BOOL> ends;      // uploads
    std::vector<BOOL> downloads; // downloads
};

} // namespace linktest
