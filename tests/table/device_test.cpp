// Device lists, the attribute-update file, command 2095 and the oscilloscope guard.
#include "TestFiles.h"
#include "frame_fixture.h"

#include "table/OldProtocolDevice.h"
#include "table/ParmiraDialog.h"
#include "table/TableResources.h"

#include <afx/afxtest.h>

using namespace tt;

namespace {

class DeviceTest : public FrameTest {
protected:
    void WriteConfig(const char* name, const std::string& text) {
        Spit(host.tempDir + "/Config/" + name, text);
    }
    // Gives the module a product record with these numbers.
    void SetProduct(DWORD line, DWORD product, DWORD sub = 0) {
        module->label = {0x42, 0x00};
        ProductRecord& r = host.products.records[0x42];
        r.line = line;
        r.product = product;
        r.sub = sub;
    }
};

TEST_F(DeviceTest, DeviceLinesParseByPositionWhateverTheyHold) {
    struct Case {
        const char* line;
        bool isRow;
        DWORD lineId, product;
        const char* name;
    } cases[] = {
        {"dwLineID=11,dwProductID=282,Name=ZD4", true, 11, 282, "ZD4"},
        // Blanks vanish everywhere, in the name too.
        {" dwLineID = 7 , dwProductID = 8 , Name = My Drive ", true, 7, 8, "MyDrive"},
        // Four fields: a row all the same, with nothing in it.
        {"dwLineID=1,dwProductID=2,Name=A,B", true, 0, 0, ""},
        // Fields in another order: each field loses only its own key, so the numbers
        // don't parse.
        {"dwProductID=5,dwLineID=6,Name=X", true, 0, 0, "X"},
        // A comment naming the three words counts as a device line.
        {"; dwLineID=3,dwProductID=4,Name=old", true, 0, 4, "old"},
        {"dwLineID=abc,dwProductID=9,Name=Y", true, 0, 9, "Y"},
        // Case matters for the three words; without all of them there is no row.
        {"dwlineid=1,dwProductID=2,Name=A", false, 0, 0, ""},
        {"dwLineID=1,dwProductID=2", false, 0, 0, ""},
        {"", false, 0, 0, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::unique_ptr<COldProtocolDevice> row(
            COldProtocolDeviceAgent::ParseLine(c.line, &host.util));
        ASSERT_EQ(row != nullptr, c.isRow);
        if (!row)
            continue;
        EXPECT_EQ(row->m_dwLineID, c.lineId);
        EXPECT_EQ(row->m_dwProductID, c.product);
        EXPECT_EQ(row->m_strName, c.name);
    }
}

TEST_F(DeviceTest, ListsAreReadFromTheConfigFolderAtConstruction) {
    WriteConfig("OldProtocolDevice.ini",
                "; old\ndwLineID=7,dwProductID=64,Name=ZV5\r\ndwLineID=7,dwProductID=64,Name=ZV5\n"
                "dwLineID=1,dwProductID=2,Name=A,B\n");
    CVarTable table;
    COldProtocolDeviceAgent* old = table.GetOldProtocolDevices();
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(old->GetCount(), 3); // duplicates stay
    EXPECT_TRUE(old->IsOldProtocolDevice(7, 64));
    // The broken line's row matches a drive without product record (0, 0).
    EXPECT_TRUE(old->IsOldProtocolDevice(0, 0));
    EXPECT_FALSE(old->IsOldProtocolDevice(64, 7));
    // A missing file gives an empty list, and so does a missing value service.
    EXPECT_EQ(table.GetHalfDuplexDevices()->GetCount(), 0);
    host.services.Withhold<IHostVarUtil>();
    CVarTable bare;
    EXPECT_EQ(bare.GetOldProtocolDevices()->GetCount(), 0);
}

TEST_F(DeviceTest, AttributeUpdateTriesBothKeyFormsWithUpperCaseHex) {
    table = std::make_unique<CVarTable>();
    table->SetModule(module);
    SetProduct(13, 282, 2);
    EXPECT_FALSE(table->SupportsAttributeUpdate()); // no file
    WriteConfig("UpdateAttribute.ini", "[ProtocalType]\n0x000D_0x011A=1\n0xB_0x21=1\n"
                                       "0x0007_0x0040_0x0002=3\n0x0005_0x0005=-1\n");
    EXPECT_TRUE(table->SupportsAttributeUpdate());
    SetProduct(11, 33);
    EXPECT_FALSE(table->SupportsAttributeUpdate()) << "keys are four digits wide";
    SetProduct(7, 64, 2);
    EXPECT_TRUE(table->SupportsAttributeUpdate()) << "three-number key";
    SetProduct(7, 64, 3);
    EXPECT_FALSE(table->SupportsAttributeUpdate());
    SetProduct(5, 5);
    EXPECT_FALSE(table->SupportsAttributeUpdate()) << "-1 means not listed";
    module->label.clear();
    EXPECT_FALSE(table->SupportsAttributeUpdate()) << "no product record";
}

TEST_F(DeviceTest, AttributeUploadModeFollowsTheProductLine) {
    table = std::make_unique<CVarTable>();
    table->SetModule(module);
    SetProduct(13, 1);
    table->StartAttributeUpload();
    SetProduct(11, 282);
    table->StartAttributeUpload();
    SetProduct(11, 283);
    table->StartAttributeUpload();
    module->label.clear();
    table->StartAttributeUpload();
    EXPECT_EQ(host.transfer.syncModes, (std::vector<int>{3, 2, 1, 1}));
    host.services.Withhold<IHostTransferService>();
    table->StartAttributeUpload();
    EXPECT_EQ(host.transfer.syncModes.size(), 4u);
}

TEST_F(DeviceTest, Line13AndFactoryPasswordAddresses) {
    table = std::make_unique<CVarTable>();
    EXPECT_FALSE(table->IsProductLine13(nullptr));
    EXPECT_FALSE(table->IsProductLine13(module)); // empty label
    SetProduct(13, 1);
    EXPECT_TRUE(table->IsProductLine13(module));
    host.services.Withhold<IHostProductDb>();
    EXPECT_FALSE(table->IsProductLine13(module));
    for (UINT a : {0x0229u, 0x2229u, 0x4229u, 0x6229u})
        EXPECT_TRUE(CVarTable::IsFactoryPasswordAddress(a));
    for (UINT a : {0x0228u, 0x8229u, 0x0241u})
        EXPECT_FALSE(CVarTable::IsFactoryPasswordAddress(a));
}

TEST_F(DeviceTest, OldProtocolCommandWarnsOfflineThenOldDevices) {
    WriteConfig("OldProtocolDevice.ini", "dwLineID=7,dwProductID=64,Name=ZV5\n");
    table = std::make_unique<CVarTable>();
    table->SetModule(module);
    CAfxRecordingResponder responder;
    SetProduct(7, 64);
    module->online = 0;
    EXPECT_TRUE(table->OnFrameCommand(ID_OLD_PROTOCOL_CHECK));
    ASSERT_EQ(responder.Count(AfxPrompt::MessageBox), 1u);
    EXPECT_EQ(responder.Last(AfxPrompt::MessageBox)->text, "设备离线.");
    EXPECT_EQ(responder.Last(AfxPrompt::MessageBox)->caption, "");
    module->online = 1;
    table->OnOldProtocolCommand();
    ASSERT_EQ(responder.Count(AfxPrompt::MessageBox), 2u);
    EXPECT_EQ(responder.Last(AfxPrompt::MessageBox)->text, "老设备协议不支持该操作.");
    EXPECT_EQ(responder.Last(AfxPrompt::MessageBox)->Icon(), UINT(MB_ICONWARNING));
    SetProduct(7, 65);
    table->OnOldProtocolCommand();
    EXPECT_EQ(responder.Count(AfxPrompt::MessageBox), 2u);
}

struct Scope : IOscilloscopePanel {
    HWND window = nullptr;
    HWND GetWindow() override { return window; }
};

TEST_F(DeviceTest, OscilloscopeWindowCountsOnlyWhenShown) {
    OpenFrame();
    EXPECT_FALSE(table->IsOscilloscopeWindowVisible()); // no such plug-in
    Scope scope;
    host.manager.RegisterModuleInterface(IID_IOscilloscopePanel, &scope);
    EXPECT_FALSE(table->IsOscilloscopeWindowVisible()); // no window
    scope.window = parent.GetSafeHwnd();
    parent.ShowWindow(SW_HIDE);
    EXPECT_FALSE(table->IsOscilloscopeWindowVisible());
    parent.ShowWindow(SW_SHOW);
    EXPECT_TRUE(table->IsOscilloscopeWindowVisible());
    host.manager.RegisterModuleInterface(IID_IOscilloscopePanel, nullptr);
}

TEST_F(DeviceTest, OscilloscopeGuardTable) {
    WriteConfig("HalfDuplexDevice.ini", "dwLineID=11,dwProductID=282,Name=ZD4\n");
    CParmiraDialog panel;
    panel.SetProject(&host.project);
    table = std::make_unique<CVarTable>();
    table->SetPanel(&panel);
    table->SetModule(module);
    struct Case {
        DWORD line, product;
        int connection;
        BOOL running;
        BOOL busy;
    } cases[] = {
        {13, 1, 2, 1, 0}, // line 13 is exempt on connection 2
        {13, 1, 6, 1, 1}, // but not on 6
        {5, 1, 2, 1, 1},    {5, 1, 6, 1, 1},
        {5, 1, 0, 1, 0},    {11, 282, 0, 1, 1}, // half-duplex: on any connection
        {11, 282, 0, 0, 0}, {5, 1, 6, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.line << "/" << c.product << " on " << c.connection
                                        << (c.running ? " running" : " idle"));
        SetProduct(c.line, c.product);
        host.project.connection = c.connection;
        host.project.oscilloscopeRunning = c.running;
        EXPECT_EQ(table->IsOscilloscopeBusy(module), c.busy);
    }
    EXPECT_FALSE(table->IsOscilloscopeBusy(nullptr));
    // The windowless frame has no panel, so nothing stops its export.
    host.project.connection = 6;
    host.project.oscilloscopeRunning = 1;
    table->SetPanel(nullptr);
    EXPECT_FALSE(table->IsOscilloscopeBusy(module));
}

} // namespace
