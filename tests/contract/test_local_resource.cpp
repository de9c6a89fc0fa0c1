#include "module/LocalResource.h"

#include <afx/afxres.h>

#include <gtest/gtest.h>

namespace {

// Each test starts and ends on a known current handle, whatever ran before.
class LocalResourceTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved = AfxGetResourceHandle();
        host = AfxCreateResourceHandle("host");
        module = AfxCreateResourceHandle("module");
        AfxSetResourceHandle(host);
    }
    void TearDown() override {
        AfxSetResourceHandle(saved);
        AfxFreeResourceHandle(module);
        AfxFreeResourceHandle(host);
    }
    HINSTANCE saved = nullptr;
    HINSTANCE host = nullptr;
    HINSTANCE module = nullptr;
};

} // namespace

TEST_F(LocalResourceTest, NestedScopesUnwindInOrder) {
    HINSTANCE other = AfxCreateResourceHandle("other");
    {
        CLocalResource none(nullptr); // no module handle: the current one stays
        EXPECT_EQ(AfxGetResourceHandle(), host);
    }
    {
        CLocalResource outer(module);
        EXPECT_EQ(outer.GetPreviousHandle(), host);
        {
            CLocalResource inner(other);
            EXPECT_EQ(AfxGetResourceHandle(), other);
        }
        EXPECT_EQ(AfxGetResourceHandle(), module);
    }
    EXPECT_EQ(AfxGetResourceHandle(), host);
    AfxFreeResourceHandle(other);
}

TEST_F(LocalResourceTest, RestoresWhenLeftEarlyAndAfterAChangeInside) {
    auto work = [&](bool leaveEarly) {
        CLocalResource scope(module);
        if (leaveEarly)
            return 1;
        // Something inside switched handles and didn't put it back.
        AfxSetResourceHandle(nullptr);
        return 2;
    };
    EXPECT_EQ(work(true), 1);
    EXPECT_EQ(AfxGetResourceHandle(), host);
    EXPECT_EQ(work(false), 2);
    EXPECT_EQ(AfxGetResourceHandle(), host);
}
