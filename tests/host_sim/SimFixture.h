// The demo project in an in-process host, with helpers to reach a parameter by code.
#pragma once

#include "module/host/IMessage_ModuleUploadEvent.h"
#include "module/host/IRefreshQueryEvent.h"
#include "module/host/IVarAttr.h"
#include "zorhost/ReferenceHost.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace simtest {

using zorhost::sim::FailureMode;
using zorhost::sim::SimulatedDrive;

// A refresh listener that counts its calls and runs `then` from each, as a frame would
// post and submit.
struct RefreshListener : IRefreshQueryEvent {
    std::atomic<int> calls{0};
    std::function<void()> then;
    void OnRefreshQuery() override {
        ++calls;
        if (then)
            then();
    }
};

// Asks the next refresh cycle for `vars` of module `key`.
inline void Submit(IHostRefreshService& refresh, const char* key, std::vector<IVarObjEx*> vars) {
    std::unique_ptr<IHostRefreshQuery> q(refresh.NewQuery());
    q->SetKind(1);
    q->SetModuleKey(key);
    for (IVarObjEx* v : vars) {
        IHostRefreshItem* item = q->NewItem();
        item->SetAddress(v->GetInstanceAddress());
        item->SetDataType(v->GetAttr()->GetDataType());
        item->SetLength(v->GetAttr()->GetValueLength());
        ASSERT_TRUE(q->AddItem(item));
    }
    refresh.SubmitQuery(q.get());
}

class DemoHost : public ::testing::Test, public IMessage_ModuleUploadEvent {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(host.LoadDemo(&error)) << error;
        // The ends of transfers are heard where the module hears them: on the bus.
        auto* bus = host.Services().Get<IHostMessageBus>();
        ASSERT_NE(bus, nullptr);
        ASSERT_TRUE(bus->Subscribe(IMessage_ModuleUploadEvent::kIID, this));
    }
    void TearDown() override {
        host.Services().Get<IHostMessageBus>()->Unsubscribe(IMessage_ModuleUploadEvent::kIID, this);
    }

    const zorhost::device::ParameterDef& Param(const char* key, const char* code, int axis = -1) {
        const auto& d = host.Drive(key)->Device();
        const std::uint32_t i = d.FindByCode(code, axis);
        EXPECT_NE(i, zorhost::device::kNoIndex) << code;
        return d.parameters[i];
    }
    UINT Address(const char* key, const char* code, int axis = -1) {
        return Param(key, code, axis).address;
    }
    double Peek(const char* key, UINT address) {
        double raw = -12345;
        EXPECT_TRUE(host.Drive(key)->PeekRaw(address, raw)) << address;
        return raw;
    }
    IVarObjEx* Var(const char* key, UINT address) {
        return host.Module(key)->Store().FindByAddress(address);
    }

    struct End {
        CString key;
        BOOL success;
        bool download;
    };
    std::vector<End> ends;
    void OnModuleUploaded(const CString& key, BOOL success) override {
        ends.push_back({key, success, false});
    }
    void OnModuleDownloaded(const CString& key, BOOL success) override {
        ends.push_back({key, success, true});
    }
    zorhost::ReferenceHost host;
};

} // namespace simtest
