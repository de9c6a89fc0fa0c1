#include "zorhost/services/HostVarUtil.h"

#include "TempDir.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using zorhost::CHostVarUtil;

namespace {

class HostVarUtilFiles : public ::testing::Test {
protected:
    std::string Write(const char* name, const std::string& content) {
        std::ofstream(m_dir / name, std::ios::binary) << content;
        return m_dir / name;
    }
    TempDir m_dir;
};

TEST_F(HostVarUtilFiles, LinesWithoutEndsBomOrTrailingBreak) {
    CHostVarUtil u;
    std::vector<CString> lines{"stale"};
    ASSERT_TRUE(u.ReadTextLines(Write("a.txt", "\xEF\xBB\xBFone\r\ntwo\n\nfour\n").c_str(), lines));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], CString("one"));
    EXPECT_EQ(lines[1], CString("two"));
    EXPECT_EQ(lines[2], CString(""));
    EXPECT_EQ(lines[3], CString("four"));

    ASSERT_TRUE(u.ReadTextLines(Write("b.txt", "last without break").c_str(), lines));
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_TRUE(u.ReadTextLines(Write("c.txt", "").c_str(), lines));
    EXPECT_TRUE(lines.empty());
    lines.push_back("x");
    EXPECT_FALSE(u.ReadTextLines((m_dir / "missing").c_str(), lines));
    EXPECT_TRUE(lines.empty());
}

TEST_F(HostVarUtilFiles, ProfileIntegersBySectionAndKey) {
    CHostVarUtil u;
    std::string path = Write("p.ini", "; comment\n[Other]\nRate=1\n"
                                      "[ Comm ]\r\n Rate = 115200 \nAxis=-3x\nEmpty=\n");
    CString p(path);
    EXPECT_EQ(u.GetIniInt(p, "comm", "rate", 9), 115200);
    EXPECT_EQ(u.GetIniInt(p, "Other", "Rate", 9), 1);
    EXPECT_EQ(u.GetIniInt(p, "Comm", "Axis", 9), -3);
    EXPECT_EQ(u.GetIniInt(p, "Comm", "Empty", 9), 0);
    EXPECT_EQ(u.GetIniInt(p, "Comm", "Absent", 9), 9);
    EXPECT_EQ(u.GetIniInt(p, "Nowhere", "Rate", 9), 9);
    EXPECT_EQ(u.GetIniInt((m_dir / "none.ini").c_str(), "Comm", "Rate", -1), -1);
}

TEST_F(HostVarUtilFiles, DirectoriesAndHelpFile) {
    CHostVarUtil u;
    CString sub((m_dir / "made").c_str());
    EXPECT_TRUE(u.MakeDirectory(sub));
    EXPECT_TRUE(u.MakeDirectory(sub)) << "an existing directory counts";
    struct stat st {};
    EXPECT_EQ(stat(sub.GetString(), &st), 0);
    std::string file = Write("plain", "x");
    EXPECT_FALSE(u.MakeDirectory(file.c_str())) << "a file is not a directory";
    EXPECT_FALSE(u.MakeDirectory((m_dir / "no/two").c_str()));

    CString dir;
    u.GetInstallDir(dir);
    ASSERT_FALSE(dir.IsEmpty());
    EXPECT_NE(dir.str().back(), '/');
    std::string self = dir.str() + "/test_host_model";
    EXPECT_EQ(access(self.c_str(), X_OK), 0) << self;

    CString help;
    u.GetHelpFile(help);
    EXPECT_EQ(help, CString(dir.str() + "/help/index.html"));
}

} // namespace
