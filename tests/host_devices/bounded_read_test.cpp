// Every reader of a file from outside refuses endless input (a path that leads to a device
// such as /dev/zero) with a message, after reading no more than its ceiling.

#include "ShippedDevices.h"

#include "zorhost/device/DeviceLoader.h"
#include "zorhost/files/BoundedRead.h"
#include "zorhost/files/ParamFile.h"
#include "zorhost/model/VarDatabase.h"
#include "zorhost/model/VarStore.h"
#include "zorhost/project/ProjectFile.h"
#include "zorhost/services/HostVarUtil.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>

namespace {

using namespace zorhost;

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
