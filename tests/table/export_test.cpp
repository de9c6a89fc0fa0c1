// The parameter table, byte for byte, and the exports that are refused.
#include "frame_fixture.h"

#include "TestFiles.h"
#include "files/ParamTableWriter.h"
#include "table/ParmiraDialog.h"

#include <filesystem>
#include <fstream>

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
        struct Param {
            int group;
            const char *code, *name, *unit;
            UINT address;
            int dataType, decimals, modifyMode;
            Variant factory, minimum, maximum, value;
        };
        using V = Variant;
        // A comma in a name shifts the row; nothing guards it. H02-07 is held as a raw
        // figure (-1234 is -12.34); H02-06, never changed, is in no list and no file.
        const Param params[] = {
            {0, "H00-00", "电机编号", "", 0, VT_UI2, 0, 1, V::I4(14000), V::I4(0), V::I4(65535),
             V::I4(14101)},
            {1, "H02-02", "速度,增益", "Hz", 0x202, VT_R8, 1, 0, V::R8(40), V::R8(1), V::R8(2000.5),
             V::R8(-12.34)},
            {1, "H02-05", nullptr, "", 0x205, VT_I2, 0, 2, V::I4(0), V::I4(-100), V::I4(100), V()},
            {1, "H02-07", "转矩限制", "%", 0x207, VT_I2, 2, 0, V::I2(40), V::I2(-32768),
             V::I2(32767), V::I2(-1234)},
            {1, "H02-06", nullptr, "", 0x206, VT_I4, 0, 3, V::I4(0), V::I4(0), V::I4(100),
             V::I4(0)},
        };
        CGroupNode* groups[] = {AddGroup(module->drive.groups, "H00"),
                                AddGroup(module->drive.groups, "H02")};
        for (const Param& p : params) {
            Attr* a = module->drive.AddParam(p.code, p.address);
            if (p.name != nullptr)
                a->name = p.name;
            a->unit = p.unit;
            a->dataType = p.dataType;
            a->decimals = p.decimals;
            a->modifyMode = p.modifyMode;
            a->factory = p.factory;
            a->minimum = p.minimum;
            a->maximum = p.maximum;
            module->drive.VarOf(p.code)->value = p.value;
            groups[p.group]->AddMember(p.code);
        }
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
