// Device descriptions as the loader takes them: broken ones are refused with the file and
// the place named and leave nothing behind, generated ones load with the size asked for, and
// every reader of a file from outside refuses endless input (a path that leads to a device
// such as /dev/zero) with a message, after reading no more than its ceiling.
#include "ShippedDevices.h"

#include "zorhost/device/DeviceGenerator.h"
#include "zorhost/device/DeviceLoader.h"
#include "zorhost/files/BoundedRead.h"
#include "zorhost/files/ParamFile.h"
#include "zorhost/model/VarDatabase.h"
#include "zorhost/model/VarStore.h"
#include "zorhost/project/ProjectFile.h"
#include "zorhost/services/HostVarUtil.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cfloat>
#include <fstream>
#include <set>
#include <string>

using namespace zorhost;
using namespace zorhost::device;

namespace {

// A small valid description; each test breaks one thing in it.
std::string Doc(const std::string& params, const std::string& groups,
                const std::string& extra = "") {
    return R"({"format": 1,
 "product": {"name": "T", "lineId": 1, "productId": 2, "electronicLabel": "0001 0002",
             "kind": "servo", "accessModel": 0},
 "parameters": [)" +
           params + R"(],
 "groups": [)" +
           groups + "]" + extra + "}";
}

// Parameters in one group "H02" that names no members.
std::string InH02(const std::string& params) {
    return Doc(params, R"({"name": "H02"})");
}

// One parameter "H02-00" named "a" with these further keys, in group "H02".
std::string One(const std::string& keys) {
    return InH02(R"({"code": "H02-00", "name": "a", )" + keys + "}");
}

const std::string kTwoParams =
    R"({"code": "H02-00", "name": "a", "type": "u16", "max": 10},
       {"code": "H02-01", "name": "b", "type": "i16", "min": -5, "maxLink": "H02-00"})";
const std::string kGroup = R"({"name": "H02", "members": ["H02-00", "H02-01"]})";

LoadResult Parse(const std::string& text) {
    return ParseDeviceJson(text, "dev.json");
}

TEST(DeviceLoader, AcceptsTheBaseDocument) {
    LoadResult r = Parse(Doc(kTwoParams, kGroup));
    ASSERT_TRUE(r) << r.error.ToString();
    EXPECT_EQ(r.device->parameters.size(), 2u);
    EXPECT_EQ(r.device->parameters[1].maxLink, 0u);
    EXPECT_EQ(r.device->parameters[1].address, 0x0201u);
    EXPECT_EQ(r.device->sourceFile, "dev.json");

    // Without limits a parameter may take its type's whole range.
    r = Parse(Doc(R"({"code": "H02-00", "name": "a", "type": "f32", "factory": 2.5},
                     {"code": "H02-02", "name": "b", "type": "u32", "factory": "0xFFFFFFFF"})",
                  R"({"name": "H02", "members": "*"})"));
    ASSERT_TRUE(r) << r.error.ToString();
    EXPECT_EQ(r.device->parameters[0].maxValue, double(FLT_MAX));
    EXPECT_EQ(r.device->parameters[1].minValue, 0.0);
    EXPECT_EQ(r.device->parameters[1].factoryValue, 4294967295.0);
    EXPECT_EQ(r.device->groups[0].members.size(), 2u);
}

struct Broken {
    const char* what;
    std::string text;
    const char* place;   // expected in LoadError::place
    const char* message; // expected in LoadError::message
};

class RefusedDocument : public ::testing::TestWithParam<Broken> {};

TEST_P(RefusedDocument, NamesThePlace) {
    LoadResult r = Parse(GetParam().text);
    ASSERT_FALSE(r);
    EXPECT_EQ(r.device, nullptr);
    EXPECT_EQ(r.error.ToString().rfind("dev.json: " + r.error.place, 0), 0u) << r.error.ToString();
    EXPECT_NE(r.error.place.find(GetParam().place), std::string::npos) << r.error.ToString();
    EXPECT_NE(r.error.message.find(GetParam().message), std::string::npos) << r.error.ToString();
}

// Without the comma behind the product, which ends line 3, the parser stumbles on line 4.
std::string WithoutCommaAfterProduct() {
    std::string text = Doc(kTwoParams, kGroup);
    return text.erase(text.find("\"accessModel\": 0},") + 17, 1);
}

const std::string kAxes = R"(, "axes": [{"name": "1", "key": "A1", "addressBase": 0},
                                        {"name": "2", "key": "A2", "addressBase": "0x0100"}])";

INSTANTIATE_TEST_SUITE_P(
    Cases, RefusedDocument,
    ::testing::Values(
        Broken{"missing comma", WithoutCommaAfterProduct(), "line 4, column 3 (offset 151)",
               "unterminated object"},
        Broken{"array at the top", "[1, 2]", "top level", "expected an object"},
        Broken{"unknown type", One(R"("type": "u24")"), "parameters[0] \"H02-00\".type",
               "unknown type \"u24\""},
        Broken{"duplicate code",
               Doc(kTwoParams + R"(, {"code": "H02-00", "name": "c", "type": "u16",
                                      "address": "0x0200"})",
                   kGroup),
               "parameters[2] \"H02-00\"", "duplicate code"},
        Broken{"duplicate address",
               Doc(R"({"code": "P1", "name": "a", "type": "u16", "address": 16},
                      {"code": "P2", "name": "b", "type": "u16", "address": "0x0010"})",
                   R"({"name": "G", "members": ["P1", "P2"]})"),
               "parameters[1] \"P2\"", "duplicate address 0x0010"},
        Broken{"axes that overlap",
               Doc("", "",
                   R"(, "axisParameters": [{"code": "H00-00", "name": "a", "type": "u16"},
                                           {"code": "H01-00", "name": "b", "type": "u16"}])" +
                       kAxes),
               "on axes[1]", "duplicate address 0x0100"},
        Broken{"dangling member", Doc(kTwoParams, R"({"name": "H02", "members": ["H02-07"]})"),
               "groups[0] \"H02\".members[0]", "names no parameter \"H02-07\""},
        Broken{"dangling member of a child group",
               Doc(kTwoParams, R"({"name": "H02", "children": [{"name": "X",
                                   "members": ["H02-00", "H0X-01"]}]})"),
               "groups[0] \"H02\".children[0] \"X\".members[1]", "names no parameter"},
        Broken{"dangling member of the axis template",
               Doc("", "",
                   R"(, "axisParameters": [{"code": "H00-00", "name": "a", "type": "u16"}],
                        "axisGroups": [{"name": "H00", "members": ["H00-00", "H00-01"]}])" +
                       kAxes.substr(0, kAxes.find("0x0100")) + R"(0x2000"}])"),
               "axisGroups[0] \"H00\".members[1]", "names no parameter \"H00-01\""},
        Broken{"dangling link", One(R"("type": "u16", "minLink": "H09-09")"),
               "parameters[0] \"H02-00\".minLink", "names no parameter \"H09-09\""},
        Broken{"address against the code",
               InH02(R"({"code": "H02-41", "name": "a", "type": "u16", "address": "0x0230"})"),
               "parameters[0] \"H02-41\".address", "disagrees with code"},
        Broken{"factory outside limits", One(R"("type": "u16", "max": 10, "factory": 11)"),
               "parameters[0] \"H02-00\".factory", "above max"},
        Broken{"value too large for the type", One(R"("type": "i8", "max": 200)"),
               "parameters[0] \"H02-00\".max", "does not fit type i8"},
        Broken{"bit beyond the type",
               One(R"("type": "u8", "values": {"bits": [{"bit": 9, "text": "x"}]})"),
               "parameters[0] \"H02-00\".values", "bit 9 outside a 8-bit value"},
        Broken{"overlapping bit ranges", One(R"("type": "u16", "values": {"bitRanges": [
                       {"text": "x", "first": 0, "width": 4, "options": [{"value": 1, "text": "o"}]},
                       {"text": "y", "first": 3, "width": 2, "options": [{"value": 1, "text": "o"}]}]})"),
               "values.bitRanges[1]", "overlaps"},
        Broken{"unknown value info", One(R"("type": "u16", "values": "Nope")"),
               "parameters[0] \"H02-00\".values", "no value info named \"Nope\""},
        Broken{"misspelt key", One(R"("type": "u16", "minlink": "H02-00")"),
               "parameters[0] \"H02-00\"", "unknown key \"minlink\""},
        Broken{
            "category naming no group",
            Doc(kTwoParams, kGroup, R"(, "categories": [{"name": "C", "groups": ["H02", "H03"]}])"),
            "categories[0].groups[1]", "names no group \"H03\""},
        Broken{"connector group missing",
               Doc(kTwoParams, kGroup,
                   R"(, "connectors": [{"kind": "B", "name": "b", "group": "H30", "base": 3000}])"),
               "connectors[0].group", "names no group \"H30\""},
        Broken{"named variable without a parameter",
               Doc(kTwoParams, kGroup,
                   R"(, "namedVariables": [{"name": "Authority", "code": "H0B-90"}])"),
               "namedVariables[0] \"Authority\".code", "names no parameter"},
        Broken{"per-unit id without a table",
               One(R"("type": "i16", "display": 2, "perUnitBase": 4)"),
               "parameters[0] \"H02-00\".perUnitBase", "no per-unit table 4"},
        Broken{"per-unit base on a decimal parameter",
               Doc(R"({"code": "H02-00", "name": "a", "type": "i16", "perUnitBase": 1})",
                   R"({"name": "H02"})",
                   R"(, "perUnitBases": [{"id": 1, "bases": [{"name": "n", "code": "H02-00"}]}])"),
               "parameters[0] \"H02-00\".perUnitBase", "needs display 2"},
        Broken{"connector parameter without its kind of group",
               Doc(kTwoParams + R"(, {"code": "H02-02", "name": "c", "type": "u16",
                       "values": {"enum": [{"value": 0, "text": "off"},
                                           {"value": 65535, "text": "KF连接器"}]}})",
                   kGroup,
                   R"(, "connectors": [{"kind": "B", "name": "b", "group": "H02", "base": 0}])"),
               "parameters[2] \"H02-02\".values", "kind \"KF连接器\" without"},
        Broken{"label too long",
               Doc(kTwoParams, kGroup)
                   .replace(Doc(kTwoParams, kGroup).find("0001 0002"), 9, std::string(66, 'A')),
               "product.electronicLabel", "1 to 32 whole bytes"},
        Broken{"text type", One(R"("type": "string")"), "parameters[0] \"H02-00\".type",
               "can't be read or written over the drive link"},
        Broken{"32-bit value over the next parameter",
               InH02(R"({"code": "H02-00", "name": "a", "type": "u16"},
                      {"code": "H02-01", "name": "b", "type": "i32"},
                      {"code": "H02-02", "name": "c", "type": "u16"})"),
               "parameters[1] \"H02-01\"", "also covers 0x0202, the address of parameters[2]"},
        Broken{"64-bit axis value over the next axis's first parameter",
               Doc("", "",
                   R"(, "axisParameters": [{"code": "H00-00", "name": "a", "type": "u16"},
                                           {"code": "H00-253", "name": "b", "type": "f64"}])" +
                       kAxes),
               "axisParameters[1] \"H00-253\" on axes[0]", "the address of axisParameters[0]"},
        Broken{"32-bit value at the last address",
               Doc(R"({"code": "P", "name": "a", "type": "f32", "address": "0xFFFF"})",
                   R"({"name": "G", "members": ["P"]})"),
               "parameters[0] \"P\"", "runs past address 0xFFFF"},
        Broken{"code with a tab", Doc(R"({"code": "H02-00\t", "name": "a", "type": "u16"})", ""),
               "parameters[0].code", "holds a tab"},
        Broken{
            "name with a line break",
            Doc(kTwoParams, kGroup).replace(Doc(kTwoParams, kGroup).find("\"T\""), 3, "\"T\\nX\""),
            "product.name", "holds a line break"},
        Broken{"axis key with a line break",
               Doc("", "", kAxes).replace(Doc("", "", kAxes).find("A2"), 2, "A\\r2"), "axes[1].key",
               "holds a line break"},
        Broken{"duplicate key",
               Doc(R"({"code": "H02-00", "name": "a", "type": "u16",
                                        "max": 10, "max": 20})",
                   kGroup),
               "line 5, column 52", "duplicate key \"max\""},
        // Forms a strict JSON reader doesn't take read as they always have.
        Broken{"duplicate key written with an escape",
               Doc(R"({"code": "H02-00", "name": "a", "type": "u16", "max": 1, "m\u0061x": 2})",
                   kGroup),
               "line 4, column", "duplicate key \"max\""},
        Broken{"unknown key after a byte order mark",
               Doc("{\"code\": \"H02-00\", \"name\": \"a\", \"type\": \"u16\", "
                   "\"\xEF\xBB\xBF"
                   "bogus\": 1}",
                   kGroup),
               "parameters[0] \"H02-00\"", "unknown key \"bogus\""},
        Broken{"number with a bare point",
               Doc(R"({"code": "H02-00", "name": "a", "type": "u16", "max": 70000.})", kGroup),
               "parameters[0] \"H02-00\".max", "max does not fit type u16"},
        Broken{"doubled comma", Doc(kTwoParams + ",, " + kGroup.substr(0, 0), kGroup),
               "line 5, column 87", "two commas in a row"},
        Broken{"comma before a closing bracket",
               Doc(R"({"code": "H02-00", "name": "a", "type": "u16",})", kGroup), "line 4, column",
               "comma right before '}'"}),
    [](const ::testing::TestParamInfo<Broken>& info) {
        std::string name;
        for (char c : std::string(info.param.what))
            name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
        return name;
    });

TEST(DeviceGenerator, LargeSingleAxisDeviceLoadsWithTheAskedSize) {
    LoadResult r = GenerateDevice(20000);
    ASSERT_TRUE(r) << r.error.ToString();
    const DeviceDescription& d = *r.device;
    ASSERT_EQ(d.parameters.size(), 20000u);
    std::size_t members = 0;
    for (std::uint32_t g : d.groupSet.roots)
        members += d.groups[g].members.size();
    EXPECT_EQ(members, 20000u);
    std::set<int> kinds;
    int linked = 0;
    for (const ParameterDef& p : d.parameters) {
        if (const ValueInfo* info = d.ValueInfoOf(p))
            kinds.insert(int(info->kind));
        linked += p.IsMaxLinked();
    }
    EXPECT_EQ(kinds, (std::set<int>{1, 2, 3, 4}));
    EXPECT_GT(linked, 0);
    // Lookups reach the last parameter.
    const ParameterDef& last = d.parameters.back();
    EXPECT_EQ(d.FindByCode(d.Code(last)), 19999u);
    EXPECT_EQ(d.FindByAddress(last.address), 19999u);
}

// One in eight parameters is 32-bit and takes two addresses, so 65 536 no longer fit; counts
// beyond two-digit indexes use wider groups.
TEST(DeviceGenerator, CountsUpToTheAddressSpaceUseWiderGroups) {
    LoadResult full = GenerateDevice(58000);
    ASSERT_TRUE(full) << full.error.ToString();
    EXPECT_EQ(full.device->parameters.size(), 58000u);
    EXPECT_NE(full.device->FindByCode("H00-254"), kNoIndex);
    EXPECT_TRUE(GenerateDeviceJson(65536).empty());
    EXPECT_FALSE(GenerateDevice(0));
}

TEST(DeviceGenerator, MultiAxisSplitsTheCountOverItsAxes) {
    GeneratorOptions options;
    options.axisCount = 4;
    LoadResult r = GenerateDevice(4000, options);
    ASSERT_TRUE(r) << r.error.ToString();
    ASSERT_EQ(r.device->axes.size(), 4u);
    EXPECT_EQ(r.device->parameters.size(), 4000u);
    for (int a = 0; a < 4; ++a) {
        EXPECT_EQ(r.device->AxisParameters(a).size(), 1000u);
        EXPECT_EQ(r.device->axes[a].addressBase, std::uint32_t(a) * 0x4000);
    }
    EXPECT_TRUE(GenerateDeviceJson(4001, options).empty()); // not divisible by the axes
}

TEST(DeviceGenerator, SameSeedSameDevice) {
    GeneratorOptions a, b;
    b.seed = 2;
    EXPECT_EQ(GenerateDeviceJson(500, a), GenerateDeviceJson(500, a));
    EXPECT_NE(GenerateDeviceJson(500, a), GenerateDeviceJson(500, b));
}

constexpr const char* kEndless = "/dev/zero";

TEST(BoundedRead, RegularFileToTheByteAndEndlessDevice) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::string path = dir.filePath("f").toStdString();
    std::ofstream(path) << std::string(1024, 'x');
    std::string bytes, why;
    EXPECT_EQ(files::ReadFileBounded(path, 1024, bytes, &why), files::ReadOutcome::Ok);
    EXPECT_EQ(bytes.size(), 1024u);
    EXPECT_EQ(files::ReadFileBounded(path, 1023, bytes, &why), files::ReadOutcome::TooLarge);
    EXPECT_EQ(why, "larger than 1023 bytes");
    EXPECT_TRUE(bytes.empty());

    EXPECT_EQ(files::ReadFileBounded(kEndless, 1 << 20, bytes, &why), files::ReadOutcome::TooLarge);
    EXPECT_EQ(why, "larger than 1 MB");
    EXPECT_EQ(files::ReadFileBounded(dir.path().toStdString(), 10, bytes, &why),
              files::ReadOutcome::CannotRead);
    EXPECT_EQ(why, "Is a directory");
}

TEST(BoundedRead, EveryReaderRefusesAnEndlessFile) {
    const device::LoadResult device = device::LoadDeviceFile(kEndless);
    EXPECT_FALSE(device);
    EXPECT_EQ(device.error.ToString(), "/dev/zero: larger than 64 MB; not a device description");

    project::ProjectFile project;
    project::ProjectError projectError;
    EXPECT_FALSE(project::LoadProjectFile(kEndless, project, &projectError));
    EXPECT_EQ(projectError.ToString(), "/dev/zero: larger than 4 MB; not a project file");

    CHostVarUtil util;
    std::vector<CString> lines{CString("old")};
    EXPECT_FALSE(util.ReadTextLines(kEndless, lines));
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(util.GetIniInt(kEndless, "ProtocalType", "key", -7), -7);

    files::CParamFile file;
    EXPECT_FALSE(file.Open(kEndless));
    EXPECT_NE(file.LastError().find("larger than 256 MB; not a parameter file"), std::string::npos)
        << file.LastError();

    model::CVarStore store(LoadShippedDevice("zd4m_four_axis.json"));
    std::string why;
    EXPECT_FALSE(model::CVarDatabase(store).LoadFromFile(kEndless, &why));
    EXPECT_EQ(why, "/dev/zero: larger than 64 MB");
}

} // namespace
