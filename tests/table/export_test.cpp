// The parameter table, byte for byte, and the exports that are refused.
#include "frame_fixture.h"

#include "TestFiles.h"
#include "files/ParamTableWriter.h"
#include "table/ParmiraDialog.h"

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace tt;

namespace {

class ExportTest : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        module->name = "伺服A";
        module->axisIndex = 3;
        module->version = "V2.10";
        module->label = {0x0D, 0x00, 0x1A, 0x01, 0xAB};
        CGroupNode* h00 = AddGroup(module->drive.groups, "H00");
        Attr* a = module->drive.AddParam("H00-00", 0);
        a->name = "电机编号";
        a->dataType = VT_UI2;
        a->factory = Variant::I4(14000);
        a->maximum = Variant::I4(65535);
        a->modifyMode = 1;
        module->drive.VarOf("H00-00")->value = Variant::I4(14101);
        h00->AddMember("H00-00");

        CGroupNode* h02 = AddGroup(module->drive.groups, "H02");
        a = module->drive.AddParam("H02-02", 0x202);
        a->name = "速度,增益"; // a comma shifts the row; nothing guards it
        a->unit = "Hz";
        a->decimals = 1;
        a->dataType = VT_R8;
        a->factory = Variant::R8(40);
        a->minimum = Variant::R8(1);
        a->maximum = Variant::R8(2000.5);
        a->modifyMode = 0;
        module->drive.VarOf("H02-02")->value = Variant::R8(-12.34);
        h02->AddMember("H02-02");
        a = module->drive.AddParam("H02-05", 0x205);
        a->modifyMode = 2;
        a->dataType = VT_I2;
        a->minimum = Variant::I4(-100);
        module->drive.VarOf("H02-05")->value = Variant();
        h02->AddMember("H02-05");
        a = module->drive.AddParam("H02-07", 0x207);
        a->name = "转矩限制";
        a->unit = "%";
        a->decimals = 2; // held by the drive as a raw figure: 1234 is 12.34
        a->dataType = VT_I2;
        a->factory = Variant::I2(40);
        a->minimum = Variant::I2(-32768);
        a->maximum = Variant::I2(32767);
        a->modifyMode = 0;
        module->drive.VarOf("H02-07")->value = Variant::I2(-1234);
        h02->AddMember("H02-07");
        a = module->drive.AddParam("H02-06", 0x206);
        a->modifyMode = 3; // never in a list or a file
        h02->AddMember("H02-06");
    }
    std::string Golden() { return Slurp(PARMIRA_SOURCE_DIR "/tests/table/data/param_table.csv"); }
    std::string Out(const char* name) { return host.tempDir + "/" + name; }
};

TEST_F(ExportTest, TableMatchesTheExpectedBytes) {
    table = std::make_unique<CVarTable>();
    table->SetModule(module);
    std::vector<IVarObjEx*> list;
    table->CollectAllVars(list, TRUE);
    list.insert(list.begin() + 1, nullptr); // null entries give no line
    const SYSTEMTIME stamp{2026, 3, 1, 9, 7, 5, 4, 0};
    ASSERT_TRUE(WriteParamTableList(CString(Out("a.csv")), list, module, &stamp));
    EXPECT_EQ(Slurp(Out("a.csv")), Golden());
}

TEST_F(ExportTest, EmptyListAndEmptyLabelStillGiveTheWholeHead) {
    module->label.clear();
    const SYSTEMTIME stamp{2026, 12, 0, 31, 23, 59, 58, 0};
    ASSERT_TRUE(WriteParamTableList(CString(Out("e.csv")), {}, module, &stamp));
    EXPECT_EQ(Slurp(Out("e.csv")),
              "Sign,Time\nZorvanta,2026-12-31 23:59:58\n\nDriveName,BusID,Version,ElecData\n"
              "伺服A,3,V2.10,\n\n参数,参数名称,当前值,出厂值,单位,最小值,最大值,修改方式,"
              "通讯地址(Dec),变量类型\n");
    EXPECT_FALSE(WriteParamTableList(CString(), {}, module, &stamp));
    EXPECT_FALSE(WriteParamTableList(CString(Out("n.csv")), {}, nullptr, &stamp));
    EXPECT_FALSE(std::filesystem::exists(Out("n.csv")));
}

TEST_F(ExportTest, RefusedExportsLeaveNoFile) {
    CParmiraDialog panel;
    panel.SetModule(module);
    EXPECT_FALSE(panel.ExportAllToFile("no-separator.csv"));
    EXPECT_FALSE(panel.ExportAllToFile(CString(Out("table.txt"))));
    EXPECT_FALSE(panel.ExportAllToFile(CString(Out("table"))));
    EXPECT_FALSE(panel.ExportAllToFile(CString(Out("two/levels/table.csv"))));
    module->online = 0;
    EXPECT_FALSE(panel.ExportAllToFile(CString(Out("offline.csv"))));
    panel.SetModule(nullptr);
    EXPECT_FALSE(panel.ExportAllToFile(CString(Out("none.csv"))));
    for (const char* name : {"table.txt", "table", "offline.csv", "none.csv", "two"})
        EXPECT_FALSE(std::filesystem::exists(Out(name))) << name;
    // Over an existing file the export replaces it.
    module->online = 1;
    panel.SetModule(module);
    std::ofstream(Out("old.csv")) << "old content that is longer than nothing";
    EXPECT_TRUE(panel.ExportAllToFile(CString(Out("old.csv"))));
    EXPECT_EQ(Slurp(Out("old.csv")).rfind("Sign,Time\n", 0), 0u);
}

} // namespace
