// A host whose one module reaches zordrive-sim over Modbus TCP.
#pragma once

#include "SimProcess.h"

#include "module/host/IMessage_ModuleUploadEvent.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceLoader.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace linktest {

inline bool PumpUntil(const std::function<bool()>& done, int timeout_ms) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeout_ms)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

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

class TcpHost : public ::testing::Test, public IMessage_ModuleUploadEvent {
protected:
    static constexpr const char* kKey = "SERVO";

    void SetUp() override {
        sim = std::make_unique<SimProcess>(
            std::vector<std::string>{"--tcp", "127.0.0.1:0", "zd3s_servo.json"});
        ASSERT_TRUE(sim->Started()) << "zordrive-sim did not start";
        Address("H00-00"); // loads the description
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
        if (!device)
            device = zorhost::device::LoadDeviceFile(zorhost::device::DefaultDeviceDirectory() +
                                                     "/zd3s_servo.json")
                         .device;
        return device->parameters[device->FindByCode(code)].address;
    }

    std::shared_ptr<const zorhost::device::DeviceDescription> device;

    std::unique_ptr<SimProcess> sim;
    zorhost::ReferenceHost host;
    std::vector<BOOL> ends;      // uploads
    std::vector<BOOL> downloads; // downloads
};

} // namespace linktest
