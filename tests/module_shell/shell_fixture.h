// A fresh host per test, attached to the loaded module; instances still alive at the end
// are given back while the host still answers.
#pragma once

#include "test_host.h"

#include <gtest/gtest.h>

#include <algorithm>

class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(Module().handle, nullptr);
        host.Attach();
    }
    void TearDown() override {
        for (IQXParmira* p : live) {
            void* v = static_cast<IBaseInterface*>(p);
            Module().release(&IID_IQXParmira, &v);
        }
        live.clear();
        Module().setCallback(0, nullptr);
    }

    IQXParmira* Create() {
        IBaseInterface* b = Module().create(&IID_IQXParmira);
        auto* p = static_cast<IQXParmira*>(b);
        if (p != nullptr)
            live.push_back(p);
        return p;
    }
    // Gives back through the export; forgets it here when that worked.
    int Destroy(IQXParmira* p) {
        void* v = static_cast<IBaseInterface*>(p);
        const int r = Module().release(&IID_IQXParmira, &v);
        if (r != 0)
            Forget(p);
        return r;
    }
    void Forget(IQXParmira* p) { live.erase(std::remove(live.begin(), live.end(), p), live.end()); }

    TestHost host;
    std::vector<IQXParmira*> live;
};
