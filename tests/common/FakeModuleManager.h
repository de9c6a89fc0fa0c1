// The one stand-in for the host's module manager: hands out what a test put in `made`
// for an id (null for any other) and records what it was asked to make and given back.
#pragma once

#include "module/host/IHostModuleManager.h"

#include <map>
#include <vector>

class FakeModuleManager : public IHostModuleManager {
public:
    std::map<GUID, IBaseInterface*> made;
    std::vector<GUID> asked;
    std::vector<IBaseInterface*> released;

    IBaseInterface* CreateInstance(const GUID& iid) override {
        asked.push_back(iid);
        auto it = made.find(iid);
        return it != made.end() ? it->second : nullptr;
    }
    BOOL ReleaseInstance(const GUID&, IBaseInterface** instance) override {
        released.push_back(instance != nullptr ? *instance : nullptr);
        return TRUE;
    }
    IBaseInterface* GetModuleInterface(const GUID&) override { return nullptr; }
};
