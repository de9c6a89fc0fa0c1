#include "TempDir.h"

#include <zorhost/project/ProjectFile.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

using namespace zorhost::project;

namespace {

ProjectFile FullProject() {
    ProjectFile p;
    p.name = "二号线 line 2";
    p.directory = "work/二号线";
    p.listStyle = ListStyle::Staging;
    zorhost::link::LinkSettings tcp, rtu;
    tcp.kind = zorhost::link::LinkKind::ModbusTcp;
    tcp.host = "10.0.0.5";
    tcp.port = 1502;
    tcp.unit = 3;
    tcp.timeout_ms = 250;
    rtu.kind = zorhost::link::LinkKind::ModbusRtu;
    rtu.device = "/dev/ttyUSB0";
    rtu.baud = 19200;
    rtu.parity = 'N';
    p.modules.push_back({"ZD3S", "zd3s_servo.json", "主轴 spindle", 7, true, tcp});
    p.modules.push_back({"ZV5", "/opt/devices/zv5_inverter.json", "", 0, false, rtu});
    p.modules.push_back({"ZD4M", "zd4m_four_axis.json", "", 0, true, {}});
    return p;
}

} // namespace

TEST(ProjectFile, SavedProjectReadsBackEqualAndReplacesTheOldFile) {
    TempDir dir;
    const std::string path = dir / "line.zdbproj";
    std::ofstream(path) << "old content that is not a project";

    const ProjectFile saved = FullProject();
    std::string error;
    ASSERT_TRUE(SaveProjectFile(path, saved, &error)) << error;
    ProjectFile loaded;
    ProjectError loadError;
    ASSERT_TRUE(LoadProjectFile(path, loaded, &loadError)) << loadError.ToString();
    EXPECT_EQ(loaded, saved);

    // No temporary file is left beside it.
    const auto entries = std::filesystem::directory_iterator(dir.Path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST(ProjectFile, MissingPlacesAreNamed) {
    TempDir dir;
    std::string error;
    EXPECT_FALSE(SaveProjectFile(dir / "no/such/folder/p.json", FullProject(), &error));
    EXPECT_NE(error.find("p.json: cannot be written"), std::string::npos) << error;
    ProjectFile p;
    ProjectError e;
    EXPECT_FALSE(LoadProjectFile("/nonexistent/p.json", p, &e));
    EXPECT_EQ(e.ToString().rfind("/nonexistent/p.json: cannot be read", 0), 0u) << e.ToString();
}

TEST(ProjectFile, OptionalFieldsTakeTheirDefaults) {
    ProjectFile p;
    ProjectError e;
    ASSERT_TRUE(ParseProjectJson(R"({"format": "zordrivebench-project", "version": 1,
        "modules": [{"key": "A", "deviceFile": "a.json"}, {"key": "a", "deviceFile": "b.json"}]})",
                                 "p.json", p, &e))
        << e.ToString();
    EXPECT_EQ(p.name, "");
    EXPECT_EQ(p.directory, "");
    EXPECT_EQ(p.listStyle, ListStyle::Live);
    ASSERT_EQ(p.modules.size(), 2u); // keys differ by case only: two modules
    EXPECT_EQ(p.modules[0].number, 0);
    EXPECT_TRUE(p.modules[0].online);
    EXPECT_EQ(p.modules[1].key, "a");
}

struct Broken {
    const char* json;
    const char* place;
    const char* message; // a part of the message
};

class BrokenProjectFile : public ::testing::TestWithParam<Broken> {};

TEST_P(BrokenProjectFile, IsRefusedWithItsPlaceAndLeavesTheProjectAlone) {
    const Broken& b = GetParam();
    ProjectFile p = FullProject();
    ProjectError e;
    EXPECT_FALSE(ParseProjectJson(b.json, "p.json", p, &e));
    EXPECT_EQ(p, FullProject());
    EXPECT_EQ(e.file, "p.json");
    EXPECT_EQ(e.place, b.place) << e.ToString();
    EXPECT_NE(e.message.find(b.message), std::string::npos) << e.ToString();
}

#define HEAD R"("format": "zordrivebench-project", "version": 1, )"
#define ONE R"("modules": [{"key": "A", "deviceFile": "a.json"}])"

INSTANTIATE_TEST_SUITE_P(
    Cases, BrokenProjectFile,
    ::testing::Values(
        // Broken JSON: the place counts lines from 1 and columns in characters.
        Broken{"{\n  \"name\": \"工程\",\n  \"format\" \"x\"\n}", "line 3, column 13 (offset 34)",
               "missing name separator"},
        Broken{"{\"name\": \"工程\"\n, \"a\": \"工程\" \"b\"}", "line 2, column 14 (offset 35)",
               "unterminated object"},
        Broken{"[1, 2]", "top level", "must be an object"},
        Broken{R"({"version": 1, )" ONE "}", "top level", "missing \"format\""},
        Broken{R"({"format": "zor-device", "version": 1, )" ONE "}", "format", "no project file"},
        Broken{R"({"format": "zordrivebench-project", )" ONE "}", "top level",
               "missing \"version\""},
        Broken{R"({"format": "zordrivebench-project", "version": 2, )" ONE "}", "version",
               "not supported"},
        Broken{"{" HEAD R"("listStyle": "grid", )" ONE "}", "listStyle", "\"grid\""},
        Broken{"{" HEAD R"("colour": 3, )" ONE "}", "colour", "unknown key"},
        Broken{"{" HEAD R"("name": 5, )" ONE "}", "name", "must be a text, not a number"},
        Broken{R"({"format": "zordrivebench-project", "version": 1})", "top level",
               "missing \"modules\""},
        Broken{"{" HEAD R"("modules": {}})", "modules", "must be an array"},
        Broken{"{" HEAD R"("modules": []})", "modules", "at least one module"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a.json"}, 3]})", "modules[1]",
               "must be an object"},
        Broken{"{" HEAD R"("modules": [{"deviceFile": "a.json"}]})", "modules[0]",
               "missing \"key\""},
        Broken{"{" HEAD R"("modules": [{"key": "", "deviceFile": "a.json"}]})", "modules[0].key",
               "must not be empty"},
        Broken{"{" HEAD R"("modules": [{"key": "A"}]})", "modules[0]", "missing \"deviceFile\""},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a", "onLine": true}]})",
               "modules[0].onLine", "unknown key"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a", "online": "yes"}]})",
               "modules[0].online", "true or false"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a", "number": 1.5}]})",
               "modules[0].number", "whole number"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a", "number": -1}]})",
               "modules[0].number", "whole number"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a"},
                                       {"key": "B", "deviceFile": "b"},
                                       {"key": "A", "deviceFile": "c"}]})",
               "modules[2].key", "taken by modules[0]"},
        // An explicit number may collide with the position another module takes by default.
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a"},
                                       {"key": "B", "deviceFile": "b", "number": 1}]})",
               "modules[1].number", "station number 1 is taken by modules[0]"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a", "number": 2},
                                       {"key": "B", "deviceFile": "b"}]})",
               "modules[1]", "station number 2 is taken by modules[0]"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a", "link": {"type": "can"}}]})",
               "modules[0].link.type", "none of"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a",
                                        "link": {"type": "modbus-tcp", "port": 502}}]})",
               "modules[0].link", "missing \"host\""},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a",
                  "link": {"type": "modbus-rtu", "device": "/dev/x", "parity": "X"}}]})",
               "modules[0].link.parity", "none of"},
        Broken{"{" HEAD R"("modules": [{"key": "A", "deviceFile": "a",
                  "link": {"type": "modbus-tcp", "host": "h", "unit": 300}}]})",
               "modules[0].link.unit", "whole number"}));

TEST(ProjectFile, DeviceFilesResolveBesideTheProjectThenAmongTheShippedOnes) {
    TempDir project, shipped;
    for (const std::string& file :
         {shipped / "servo.json", shipped / "both.json", project / "both.json"})
        std::ofstream(file) << "{}";
    const std::string& base = project.Path();
    const std::string& devices = shipped.Path();

    EXPECT_EQ(ResolveDeviceFile(base, devices, "both.json"), project / "both.json");
    EXPECT_EQ(ResolveDeviceFile(base, devices, "servo.json"), shipped / "servo.json");
    // A path with a folder in it means that folder; it is never looked for elsewhere.
    EXPECT_EQ(ResolveDeviceFile(base, devices, "sub/servo.json"), project / "sub/servo.json");
    // Missing everywhere: the place beside the project, so that the error names it.
    EXPECT_EQ(ResolveDeviceFile(base, devices, "none.json"), project / "none.json");
    EXPECT_EQ(ResolveDeviceFile(base, devices, "/abs/../x.json"), "/x.json");
    EXPECT_EQ(ResolvePath(base, ""), "");
}
