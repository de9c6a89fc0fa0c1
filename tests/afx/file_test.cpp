// AfxReplaceFile: the rules of opening for writing (mode, links, refusal), the system's
// own reason on failure with the old file kept, and temporaries of killed saves removed.
#include "TestFiles.h"

#include <afx/afxfile.h>
#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

mode_t ModeOf(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 ? st.st_mode : 0;
}

class ReplaceFileTest : public ::testing::Test {
protected:
    std::string Path(const char* name) const { return dir.path().toStdString() + "/" + name; }
    // Everything in the folder but the named files.
    std::set<std::string> Others(const std::set<std::string>& known) const {
        std::set<std::string> others;
        for (const auto& e : std::filesystem::directory_iterator(dir.path().toStdString()))
            if (!known.count(e.path().filename()))
                others.insert(e.path().filename());
        return others;
    }
    QTemporaryDir dir;
};

TEST_F(ReplaceFileTest, KeepsModeAndWritesThroughLinks) {
    const std::string file = Path("t.csv"), link = Path("link.csv"), chain = Path("chain.csv");
    std::ofstream(file) << "old";
    ::chmod(file.c_str(), 0600);
    ASSERT_TRUE(AfxReplaceFile(file, "new"));
    EXPECT_EQ(ModeOf(file) & 07777, 0600u);
    EXPECT_EQ(Slurp(file), "new");

    // A relative link to a link: both stay links, the file at the end changes.
    ASSERT_EQ(::symlink("t.csv", link.c_str()), 0);
    ASSERT_EQ(::symlink(link.c_str(), chain.c_str()), 0);
    std::string error;
    ASSERT_TRUE(AfxReplaceFile(chain, "through", &error)) << error;
    EXPECT_TRUE(S_ISLNK(ModeOf(chain)));
    EXPECT_TRUE(S_ISLNK(ModeOf(link)));
    EXPECT_EQ(Slurp(file), "through");
    EXPECT_EQ(ModeOf(file) & 07777, 0600u);

    // A dangling link makes its target, as opening it would; a new file takes the umask.
    const std::string dangling = Path("d.csv");
    ASSERT_EQ(::symlink("made.csv", dangling.c_str()), 0);
    const mode_t mask = ::umask(022);
    ASSERT_TRUE(AfxReplaceFile(dangling, "x"));
    ::umask(mask);
    EXPECT_TRUE(S_ISLNK(ModeOf(dangling)));
    EXPECT_EQ(Slurp(Path("made.csv")), "x");
    EXPECT_EQ(ModeOf(Path("made.csv")) & 07777, 0644u);
    EXPECT_TRUE(Others({"t.csv", "link.csv", "chain.csv", "d.csv", "made.csv"}).empty());
}

// What the save was refused with, run as a user who may write the folder but not the file
// (root drops to nobody; anyone else gets a read-only file of their own).
TEST_F(ReplaceFileTest, RefusesWhereOpeningForWritingIsRefused) {
    const std::string file = Path("ro.csv");
    std::ofstream(file) << "old";
    ::chmod(dir.path().toStdString().c_str(), 0777);
    ::chmod(file.c_str(), ::geteuid() == 0 ? 0644 : 0444);
    int pipeFd[2];
    ASSERT_EQ(::pipe(pipeFd), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(2);
        std::string error;
        const bool saved = AfxReplaceFile(file, "new", &error);
        (void)!::write(pipeFd[1], error.data(), error.size());
        ::_exit(saved ? 1 : 0);
    }
    ::close(pipeFd[1]);
    char why[128] = {};
    (void)!::read(pipeFd[0], why, sizeof why - 1);
    ::close(pipeFd[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the save went through";
    EXPECT_STREQ(why, "Permission denied");
    EXPECT_EQ(Slurp(file), "old");
    EXPECT_TRUE(Others({"ro.csv"}).empty());

    std::string error;
    EXPECT_FALSE(AfxReplaceFile(dir.path().toStdString(), "x", &error));
    EXPECT_EQ(error, "Is a directory");
}

long FullDisk(int, const void*, unsigned long size) {
    // Half of what was asked fits, then the disk is full.
    static bool first = true;
    if (first && size > 1) {
        first = false;
        return long(size / 2);
    }
    first = true;
    errno = ENOSPC;
    return -1;
}

TEST_F(ReplaceFileTest, FullDiskKeepsOldFileAndSaysWhy) {
    const std::string file = Path("t.csv");
    std::ofstream(file) << "old";
    AfxSetFileWriteFunction(&FullDisk);
    std::string error;
    const bool saved = AfxReplaceFile(file, std::string(4096, 'n'), &error);
    AfxSetFileWriteFunction(nullptr);
    EXPECT_FALSE(saved);
    EXPECT_EQ(error, "No space left on device");
    EXPECT_EQ(AfxGetLastFileError(), error);
    EXPECT_EQ(Slurp(file), "old");
    EXPECT_TRUE(Others({"t.csv"}).empty());

    // A device is written in place, and says the same when it is full.
    EXPECT_FALSE(AfxReplaceFile("/dev/full", "x", &error));
    EXPECT_EQ(error, "No space left on device");
    ASSERT_TRUE(AfxReplaceFile(file, "fits"));
    EXPECT_TRUE(AfxGetLastFileError().empty());
}

TEST_F(ReplaceFileTest, RemovesTemporariesOfKilledSavesOnly) {
    const std::string file = Path("t.csv");
    std::ofstream(file) << "old";
    // A writer that is gone; a live one (our parent) just now and long ago; a lookalike of
    // another file; a name that only resembles the pattern.
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(0);
    ::waitpid(gone, nullptr, 0);
    const std::string dead = ".t.csv.~" + std::to_string(gone) + ".Ab12Cd";
    const std::string live = ".t.csv.~" + std::to_string(::getppid()) + ".Ef34Gh";
    const std::string stale = ".t.csv.~" + std::to_string(::getppid()) + ".Ij56Kl";
    const std::string other = ".u.csv.~" + std::to_string(gone) + ".Mn78Op";
    const std::string odd = ".t.csv.~" + std::to_string(gone) + ".Ab12Cd.bak";
    for (const std::string& name : {dead, live, stale, other, odd})
        std::ofstream(Path(name.c_str())) << "part";
    const timeval old[2] = {{::time(nullptr) - AFX_STALE_SAVE_SECONDS - 5, 0},
                            {::time(nullptr) - AFX_STALE_SAVE_SECONDS - 5, 0}};
    ASSERT_EQ(::utimes(Path(stale.c_str()).c_str(), old), 0);

    ASSERT_TRUE(AfxReplaceFile(file, "new"));
    EXPECT_EQ(Others({"t.csv"}), (std::set<std::string>{live, odd, other}));
}

} // namespace
