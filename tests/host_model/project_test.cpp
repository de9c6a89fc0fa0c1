#include "zorhost/device/DeviceLoader.h"
#include "zorhost/model/ProjectModel.h"

#include "ShippedDevices.h"

#include <gtest/gtest.h>

#include <string>

using namespace zorhost::model;

namespace {

TEST(HostProject, ThreeShippedDevicesReachedFromTheRoot) {
    CProjectRoot root;
    EXPECT_EQ(root.GetProject(), nullptr);
    auto project = std::make_unique<CProject>("/tmp/proj");
    const char* files[] = {"zd3s_servo.json", "zd4m_four_axis.json", "zv5_inverter.json"};
    for (int i = 0; i < 3; ++i) {
        auto dev = LoadShippedDevice(files[i]);
        ASSERT_TRUE(dev);
        ASSERT_NE(project->Workspace().Modules().Add(std::make_unique<CDeviceModule>(
                      dev, CString("M" + std::to_string(i + 1)), i + 1)),
                  nullptr);
    }
    auto again = LoadShippedDevice(files[0]);
    EXPECT_EQ(project->Workspace().Modules().Add(std::make_unique<CDeviceModule>(again, "M1", 9)),
              nullptr)
        << "a key is taken once";
    EXPECT_EQ(project->Workspace().Modules().Add(std::make_unique<CDeviceModule>(again, "M9", 2)),
              nullptr)
        << "a number is taken once";
    root.Open(std::move(project));

    IHostProject* p = root.GetProject();
    ASSERT_NE(p, nullptr);
    IHostWorkspace* ws = p->GetWorkspace();
    ASSERT_NE(ws, nullptr);
    CString dir;
    EXPECT_TRUE(ws->GetProjectDir(dir));
    EXPECT_EQ(dir, CString("/tmp/proj"));
    IHostModuleList* list = ws->GetModuleList();
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->GetModuleCount(), 3);
    EXPECT_EQ(list->GetModuleAt(3), nullptr);

    IHostDeviceModule* four = list->FindModuleByNumber(2);
    ASSERT_NE(four, nullptr);
    EXPECT_EQ(list->FindModule("M2"), four);
    EXPECT_EQ(list->FindModule("m2"), nullptr) << "keys match exactly";
    EXPECT_EQ(four->GetProductInfo()->GetProductKind(), 5);
    EXPECT_GT(four->GetAxisCopyCount(), 0);
    IVarStore* store = four->GetVarList();
    ASSERT_NE(store, nullptr);
    IVarObjEx* var = store->FindByAddress(0x4229);
    ASSERT_NE(var, nullptr);
    EXPECT_EQ(var->GetOwnerModule(), four) << "variables know their module";
    EXPECT_EQ(store->GetOwnerModule(), four);

    IHostDeviceModule* inverter = list->GetModuleAt(2);
    ASSERT_NE(inverter, nullptr);
    EXPECT_EQ(inverter->GetProductInfo()->GetProductKind(), 1);
    EXPECT_EQ(inverter->GetAxisCopyCount(), 0);
    EXPECT_NE(inverter->GetVarList()->GetCount(), four->GetVarList()->GetCount());

    IHostDeviceModule* servo = list->GetModuleAt(0);
    servo->SetAccessLevel(2);
    EXPECT_EQ(inverter->GetAccessLevel(), 0) << "levels are per module";
    EXPECT_EQ(servo->GetElecLabelSize(), servo->GetVarList()->GetElecLabelSize());

    root.Open(nullptr);
    EXPECT_EQ(root.GetProject(), nullptr);
}

} // namespace
