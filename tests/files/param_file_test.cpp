// The host's parameter file: .zorparam save and open, the table reader, refusals of
// broken input, and the atomic replace.
#include "TextOf.h"
#include "files_fixture.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupCategory.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IValueInfo.h"
#include "module/host/IVarObjEx.h"
#include "zorhost/files/MemoryStream.h"
#include "zorhost/files/ParamFile.h"
#include "zorhost/files/ParamTableReader.h"
#include "zorhost/model/VarStore.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <filesystem>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

using namespace zorhost;
using namespace zorhost::files;

namespace {

using ParamFileTest = ft::FilesTest;

TEST_F(ParamFileTest, SaveThenOpenGivesBackEveryValueLabelVersionAndGroup) {
    // One variable of each data type, with a value the type can only just hold.
    const std::pair<int, Variant> typed[] = {
        {VT_I2, Variant::I2(-32768)},        {VT_I4, Variant::I4(-2147483647 - 1)},
        {VT_R4, Variant::R4(3.4028e38f)},    {VT_R8, Variant::R8(-1.0000000000000002)},
        {VT_DATE, Variant::Date(46000.5)},   {VT_BSTR, Variant::Str("中文, with a comma")},
        {VT_BOOL, Variant::Bool(true)},      {VT_I1, Variant::I1(-128)},
        {VT_UI1, Variant::UI1(255)},         {VT_UI2, Variant::UI2(65535)},
        {VT_UI4, Variant::UI4(4294967295u)}, {VT_EMPTY, Variant()},
    };
    IParamFile* file = theApp.CreateParamFile();
    ASSERT_NE(file, nullptr);
    const BYTE label[5] = {0x0D, 0x00, 0xFF, 0x10, 0x00};
    file->SetElecLabel(label, 5);
    file->SetVersionText("V3.01");
    file->SetAccessLevel(2);
    IParamFileTable* table = file->GetVarList();
    table->SetVersionText("V3.01-table");
    auto& own = static_cast<CParamFileTable&>(*table);
    for (size_t i = 0; i < std::size(typed); ++i) {
        const auto& [type, value] = typed[i];
        AttrFields f;
        f.code = CString("P" + std::to_string(i));
        f.name = "名称,x";
        f.address = UINT(0x1000 + i);
        f.dataType = type;
        f.decimals = int(i % 3);
        f.factoryValue = value;
        f.minValue = Variant::Str("P0"); // a linked limit
        f.minLinked = 1;
        f.modifyMode = int(i % 4);
        f.displayFormat = int(i % 5);
        f.accessLevel = int(i % 3);
        f.hiddenForUser = i % 2 ? 1 : 0;
        f.fixed = i == 3 ? 1 : 0;
        auto attr = std::make_unique<CFileVarAttr>(f, nullptr);
        auto var = std::make_unique<model::CVarObj>(attr.get(), nullptr);
        var->StoreRead(Variant::I4(int(i)));
        var->SetValue(value);
        var->SetSetValue(value);
        var->SetChecked(i % 2 ? 1 : 0);
        var->SetPerUnitMode(int(i) - 1);
        if (i == 4)
            var->SetInstanceKey("A2.P4");
        ASSERT_TRUE(own.Adopt(std::move(var), std::move(attr)));
    }
    IGroupNode* group = table->GetGroupRoot(0)->NewGroup();
    group->SetName("H02");
    group->SetDescription("基本控制");
    group->AddMember("P1");
    IGroupNode* child = table->GetGroupRoot(0)->NewGroup();
    child->SetName("H02a");
    child->AddMember("A2.P4");
    ASSERT_TRUE(group->AddChild(child));
    ASSERT_TRUE(table->GetGroupRoot(0)->AddGroup(group));
    IHostAxis* axis = table->GetGroupRoot(0)->AddAxis();
    axis->SetName("轴2");
    axis->SetKey("A2");
    IGroupNode* axisGroup = axis->GetGroupSet()->NewGroup();
    axisGroup->SetName("H05");
    ASSERT_TRUE(axis->GetGroupSet()->AddGroup(axisGroup));
    ASSERT_TRUE(table->GetGroupRoot(1)->AddMember("P2"));
    const std::string path = Path("all.zorparam");
    ASSERT_TRUE(file->Save(CString(path)));

    IParamFile* back = theApp.CreateParamFile();
    ASSERT_TRUE(back->Open(CString(path))) << static_cast<CParamFile*>(back)->LastError();
    ASSERT_EQ(back->GetElecLabelSize(), 5u);
    EXPECT_EQ(std::memcmp(back->GetElecLabel(), label, 5), 0);
    auto& read = static_cast<CParamFile&>(*back);
    EXPECT_EQ(read.VersionText(), "V3.01");
    EXPECT_EQ(read.AccessLevel(), 2);
    IParamFileTable* t = back->GetVarList();
    EXPECT_EQ(TextOf(t, &IParamFileTable::GetVersionText), "V3.01-table");
    ASSERT_EQ(t->GetCount(), int(std::size(typed)));
    // Everything a variable and its attribute hold, as one comparable value.
    auto whole = [](IVarObjEx* v) {
        const CString key = TextOf(v, &IVarObjEx::GetInstanceGuid);
        const AttrFields& f = static_cast<CFileVarAttr*>(v->GetAttr())->Fields();
        return std::make_tuple(v->GetValue(), v->GetSetValue(), v->GetLastReadValue(),
                               v->IsChecked(), v->GetPerUnitMode(), key, f.code, f.name, f.address,
                               f.dataType, f.decimals, f.factoryValue, f.minValue, f.minLinked,
                               f.modifyMode, f.displayFormat, f.accessLevel, f.hiddenForUser,
                               f.fixed);
    };
    for (int i = 0; i < t->GetCount(); ++i)
        EXPECT_TRUE(whole(t->GetAt(i)) == whole(table->GetAt(i))) << i;
    EXPECT_EQ(t->FindByCode("A2.P4"), t->GetAt(4));
    EXPECT_EQ(t->FindByAddress(0x1003), t->GetAt(3));
    IGroupNode* h02 = t->GetGroupRoot(0)->FindByName("H02");
    ASSERT_NE(h02, nullptr);
    EXPECT_EQ(TextOf(h02, &IGroupNode::GetDescription), "基本控制");
    ASSERT_EQ(h02->GetChildCount(), 1);
    CString text;
    h02->GetChildAt(0)->GetMemberAt(0, text);
    EXPECT_EQ(text, "A2.P4");
    ASSERT_TRUE(t->GetAxisList()->IsValid());
    EXPECT_EQ(TextOf(t->GetAxisList()->GetAt(0), &IHostAxis::GetKey), "A2");
    EXPECT_NE(t->GetAxisList()->GetAt(0)->GetGroupSet()->FindByName("H05"), nullptr);
    ASSERT_EQ(t->GetGroupRoot(1)->GetMemberCount(), 1);

    // SerializeTo gives the bytes of the file.
    auto* stream =
        static_cast<IMemoryStream*>(host.ModuleManager().CreateInstance(IMemoryStream::kIID));
    stream->Reset(0);
    stream->SetMode(1);
    ASSERT_TRUE(file->SerializeTo(stream));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(stream->GetData()), stream->GetSize()),
              Slurp(path));
    stream->Release();
    file->Release();
    back->Release();
}

// A module's whole list with its groups, axes and categories, through CopyFrom; the file
// bound to the module gives its variables the module's value meanings back.
TEST_F(ParamFileTest, ModuleCopyRoundTripsAndRemovalTakesVariablesAlong) {
    model::CDeviceModule* m = host.Module("ZD4M");
    ASSERT_NE(m, nullptr);
    m->Store().Var(7)->SetValue(Variant::I4(1234));
    IParamFile* file = theApp.CreateParamFile();
    IParamFileTable* table = file->GetVarList();
    table->CopyFrom(m->GetVarList());
    ASSERT_EQ(table->GetCount(), m->GetVarList()->GetCount());
    ASSERT_TRUE(table->GetAxisList()->IsValid());
    EXPECT_EQ(table->GetAxisList()->GetCount(), m->GetVarList()->GetAxisList()->GetCount());

    // Taking out a group with its variables shrinks the table.
    IGroupSet* axisSet = table->GetAxisList()->GetAt(0)->GetGroupSet();
    IGroupNode* first = axisSet->GetAt(0);
    const int before = table->GetCount();
    const int members = first->GetMemberCount();
    ASSERT_GT(members, 0);
    CString gone;
    first->GetMemberAt(0, gone);
    ASSERT_TRUE(axisSet->RemoveGroup(first, 1));
    EXPECT_LE(table->GetCount(), before - 1);
    EXPECT_EQ(table->FindByCode(gone), nullptr);

    const std::string path = Path("module.zorparam");
    ASSERT_TRUE(file->Save(CString(path)));
    IParamFile* back = theApp.CreateParamFile();
    back->LoadContext(m);
    ASSERT_TRUE(back->Open(CString(path)));
    IParamFileTable* t = back->GetVarList();
    ASSERT_EQ(t->GetCount(), table->GetCount());
    for (int i = 0; i < t->GetCount(); ++i) {
        const CString a = TextOf(t->GetAt(i), &IVarObjEx::GetInstanceGuid);
        ASSERT_EQ(a, TextOf(table->GetAt(i), &IVarObjEx::GetInstanceGuid));
        ASSERT_TRUE(t->GetAt(i)->GetValue() == table->GetAt(i)->GetValue()) << a.str();
        IVarAttr* own = m->GetVarList()->FindByCode(a)->GetAttr();
        EXPECT_EQ(t->GetAt(i)->GetAttr()->GetValueInfo() != nullptr, own->GetValueInfo() != nullptr)
            << a.str();
    }
    EXPECT_EQ(t->GetGroupRoot(0)->GetCategoryCount(),
              m->GetVarList()->GetGroupRoot(0)->GetCategoryCount());
    file->Release();
    back->Release();
}

TEST_F(ParamFileTest, BrokenFilesAreRefusedWithAReasonAndLeaveTheObjectAlone) {
    IParamFile* file = theApp.CreateParamFile();
    file->GetVarList()->CopyFrom(host.Module("ZD3S")->GetVarList());
    const std::string path = Path("good.zorparam");
    ASSERT_TRUE(file->Save(CString(path)));
    const std::string good = Slurp(path);

    struct Case {
        const char* what;
        std::string bytes;
        const char* reason;
    };
    std::string flipped = good;
    flipped[good.size() / 2] ^= 0x20;
    std::string newer = good;
    newer[8] = 2;
    std::string longer = good + "x";
    // A count that the checksum agrees with but the bytes can't hold.
    std::string lying = good;
    const std::uint32_t huge = 0x7fffffff;
    std::memcpy(&lying[20], &huge, 4);
    const std::uint32_t crc = std::uint32_t(
        crc32(0L, reinterpret_cast<const Bytef*>(lying.data() + 20), uInt(lying.size() - 20)));
    std::memcpy(&lying[16], &crc, 4);
    const std::vector<Case> cases = {
        {"empty", "", "not a parameter file"},
        {"foreign", "Sign,Time\nZorvanta,2026\n", "not a parameter file"},
        {"header cut", good.substr(0, 12), "within its header"},
        {"truncated", good.substr(0, good.size() - 7), "ends early"},
        {"one byte flipped", flipped, "checksum"},
        {"newer format", newer, "format version 2"},
        {"trailing bytes", longer, "stray bytes"},
        {"count beyond the end", lying, "beyond the end"},
    };
    IParamFile* target = theApp.CreateParamFile();
    target->SetVersionText("kept");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string broken = Path("broken.zorparam");
        Spit(broken, c.bytes);
        EXPECT_FALSE(target->Open(CString(broken)));
        const std::string& error = static_cast<CParamFile*>(target)->LastError();
        EXPECT_NE(error.find(c.reason), std::string::npos) << error;
        EXPECT_NE(error.find(broken), std::string::npos) << error;
        EXPECT_EQ(static_cast<CParamFile*>(target)->VersionText(), "kept");
        EXPECT_EQ(target->GetVarList()->GetCount(), 0);
    }
    EXPECT_FALSE(target->Open(CString(Path("missing.zorparam"))));
    file->Release();
    target->Release();
}

TEST_F(ParamFileTest, SaveReplacesAtomicallyKeepsModeAndWritesThroughLinks) {
    IParamFile* file = theApp.CreateParamFile();
    file->GetVarList()->CopyFrom(host.Module("ZV5")->GetVarList());
    const std::string path = Path("kept.zorparam");
    Spit(path, "old contents");
    ::chmod(path.c_str(), 0640);
    const std::string link = Path("link.zorparam");
    std::filesystem::create_symlink(path, link);
    ASSERT_TRUE(file->Save(CString(link)));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    struct stat st {};
    ::stat(path.c_str(), &st);
    EXPECT_EQ(st.st_mode & 0777, 0640u);
    EXPECT_NE(Slurp(path), "old contents");

    // A folder that can't be written: the old file stays whole, nothing is left beside it.
    const std::string locked = Path("locked");
    std::filesystem::create_directory(locked);
    Spit(locked + "/a.zorparam", "old contents");
    ::chmod(locked.c_str(), 0500);
    if (::geteuid() != 0) { // root writes anywhere
        EXPECT_FALSE(file->Save(CString(locked + "/a.zorparam")));
        EXPECT_FALSE(static_cast<CParamFile*>(file)->LastError().empty());
        EXPECT_EQ(Slurp(locked + "/a.zorparam"), "old contents");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(locked), {}), 1);
    }
    ::chmod(locked.c_str(), 0700);
    file->Release();
}

// The seed of the fuzz corpus was written from the format note alone, by another writer.
TEST_F(ParamFileTest, FileWrittenFromTheFormatNoteReads) {
    const std::string seed = Slurp(PARMIRA_SOURCE_DIR "/fuzz/corpus/zorparam/small.zorparam");
    ASSERT_FALSE(seed.empty());
    CParamFile file;
    std::string error;
    ASSERT_TRUE(file.FromBytes(seed.substr(1), &error)) << error;
    EXPECT_EQ(file.VersionText(), "V1.0");
    EXPECT_EQ(file.AccessLevel(), 2);
    IParamFileTable* t = file.GetVarList();
    ASSERT_EQ(t->GetCount(), 2);
    IVarObjEx* var = t->FindByCode("H02-00");
    ASSERT_NE(var, nullptr);
    EXPECT_TRUE(var->GetValue() == Variant::UI2(3));
    EXPECT_TRUE(var->IsChecked());
    EXPECT_TRUE(var->GetAttr()->IsMaxLinked());
    EXPECT_TRUE(var->GetAttr()->IsChangeTracked());
    EXPECT_EQ(t->GetAt(1)->GetAttr(), nullptr);
    EXPECT_TRUE(t->GetAt(1)->GetSetValue() == Variant::Str("abc"));
    ASSERT_EQ(t->GetGroupRoot(0)->GetCategoryCount(), 1);
    EXPECT_EQ(TextOf(t->GetAxisList()->GetAt(0), &IHostAxis::GetKey), "A1");
    EXPECT_EQ(t->GetGroupRoot(1)->GetMemberCount(), 1);
    // And it comes out again byte for byte.
    EXPECT_EQ(file.ToBytes(), seed.substr(1));
}

TEST_F(ParamFileTest, TableReaderTakesWhatTheWritersWriteAndNamesTheBadLine) {
    const std::string head = "Sign,Time\nZorvanta,2026-03-01 09:07:05\n\n"
                             "DriveName,BusID,Version,ElecData\n伺服,A,3,V2.10,0D001AAB\n\n";
    const std::string titles = "参数,参数名称,当前值,出厂值,单位,最小值,最大值,修改方式,"
                               "通讯地址(Dec),变量类型";
    const std::string rows = "H00-00,电机编号,14101,14000,,0,65535,停机修改,0,无符号16位\n"
                             "H02-02,速度,增益,-12.3,40.0,Hz,1.0,2000.5,任意修改,514,双精度浮点数\n"
                             "H02-07,转矩限制,-12.34,0.40,%,H02-08,327.67,,519,有符号16位\n";
    const std::string path = Path("t.csv");
    Spit(path, head + titles + "\n" + rows);
    CParamFile file;
    std::string error;
    ASSERT_TRUE(ReadParamTable(CString(path), file, nullptr, &error)) << error;
    ASSERT_EQ(file.GetElecLabelSize(), 4u);
    EXPECT_EQ(file.GetElecLabel()[2], 0x1A);
    EXPECT_EQ(file.VersionText(), "V2.10");
    IParamFileTable* t = file.GetVarList();
    ASSERT_EQ(t->GetCount(), 3);
    EXPECT_TRUE(t->GetAt(0)->GetValue() == Variant::UI2(14101));
    EXPECT_EQ(t->GetAt(0)->GetAttr()->GetModifyMode(), 1);
    // The comma in the name went back into the name.
    EXPECT_EQ(TextOf(t->GetAt(1)->GetAttr(), &IVarAttr::GetName), "速度,增益");
    EXPECT_TRUE(t->GetAt(1)->GetValue() == Variant::R8(-12.3));
    // Integer types hold raw figures; a limit naming a parameter stays linked.
    EXPECT_TRUE(t->GetAt(2)->GetValue() == Variant::I2(-1234));
    EXPECT_TRUE(t->GetAt(2)->GetAttr()->IsMinLinked());
    EXPECT_EQ(t->GetAt(2)->GetAttr()->GetModifyMode(), 3);

    struct Bad {
        std::string bytes;
        const char* where;
    };
    const std::vector<Bad> bad = {
        {"", "line 1:"},
        {"Sign;Time\n" + head.substr(10) + titles + "\n", "line 1:"},
        {head.substr(0, head.find("DriveName")) + "Drive\n伺服,3,V,00\n\n" + titles + "\n",
         "line 4:"},
        {head.substr(0, head.find("伺服")) + "伺服,3,V,0D0\n\n" + titles + "\n", "line 5:"},
        {head.substr(0, head.find("伺服")) + "伺服,3,V,0G\n\n" + titles + "\n", "line 5:"},
        {head + "a,b,c\n", "line 7:"},
        {head + titles + "\n" + rows + "H02-09,x,1,1,,0,1,任意修改,5\n", "line 11:"},
        {head + titles + "\n" + "H02-09,x,1,1,,0,1,任意修改,0x,有符号16位\n", "line 8:"},
        {head + titles + "\n" + "H02-09,x,abc,1,,0,1,任意修改,3,有符号16位\n", "line 8:"},
        {head + titles + "\n" + "H02-09,x,1,1,,0,1,任意修改,3,四十位\n", "line 8:"},
        {head + titles + "\n" + "H02-09,x,70000,1,,0,1,任意修改,3,有符号16位\n", "line 8:"},
        {head + titles + "\n" + rows + rows.substr(0, rows.find('\n') + 1), "line 11:"},
    };
    for (const Bad& b : bad) {
        SCOPED_TRACE(b.where);
        Spit(path, b.bytes);
        EXPECT_FALSE(ReadParamTable(CString(path), file, nullptr, &error));
        EXPECT_NE(error.find(b.where), std::string::npos) << error;
        EXPECT_EQ(file.GetVarList()->GetCount(), 3); // the last good read stays
    }
}

} // namespace
