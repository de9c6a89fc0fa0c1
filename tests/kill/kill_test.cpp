// Every file the program writes, killed mid-save: a saver writes two versions of a large
// file over one path in turn and is killed with SIGKILL at random moments. After each kill
// the file is one version whole, and at most the killed save's temporary lies beside it
// (the next save removes it).
#include "TestFiles.h"

#include <afx/afxfile.h>

#include <gtest/gtest.h>

#include <QProcess>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

// The server process of save_loop, spoken to through its standard input and output.
class SaveServer {
public:
    SaveServer(const std::string& kind, const std::string& dir, const std::string& name) {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(SAVE_LOOP, {QString::fromStdString(kind), QString::fromStdString(dir),
                                    QString::fromStdString(name), "3000"});
    }
    ~SaveServer() {
        m_process.closeWriteChannel(); // the end of its input ends it
        m_process.waitForFinished();
    }
    std::string Line() {
        while (!m_process.canReadLine())
            if (!m_process.waitForReadyRead(60000))
                return {};
        return m_process.readLine().toStdString();
    }
    // Starts a saver; its pid, or 0.
    pid_t Start() {
        m_process.write("g");
        int pid = 0;
        return std::sscanf(Line().c_str(), "pid %d", &pid) == 1 ? pid_t(pid) : 0;
    }

private:
    QProcess m_process;
};

int CountTemporaries(const std::string& dir, const std::string& name) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir))
        count += AfxIsSaveTemporary(entry.path().filename().string(), name) ? 1 : 0;
    return count;
}

struct Kind {
    const char* kind;
    const char* name;
    // Bytes that hold the time of writing, which two saves of one version may differ in.
    std::vector<std::pair<size_t, size_t>> timeBytes;
};

void PrintTo(const Kind& kind, std::ostream* os) {
    *os << kind.kind;
}

bool SameVersion(std::string a, std::string b, const Kind& kind) {
    if (a.size() != b.size())
        return false;
    for (auto [from, to] : kind.timeBytes)
        for (size_t i = from; i < to && i < a.size(); ++i)
            a[i] = b[i] = 0;
    return a == b;
}

class KillTest : public ::testing::TestWithParam<Kind> {};

TEST_P(KillTest, FileIsAlwaysOneWholeVersion) {
    const Kind& kind = GetParam();
    // A kill is not a power cut: memory-backed files show the same, without the waits
    // for the disk that would make the test slow.
    char folder[64];
    std::snprintf(folder, sizeof folder, "%s/parmira-kill-XXXXXX",
                  ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp");
    ASSERT_NE(::mkdtemp(folder), nullptr);
    const std::string dir = folder, target = dir + "/" + kind.name;
    SaveServer server(kind.kind, dir, kind.name);
    long long saveMicros = 0;
    ASSERT_EQ(std::sscanf(server.Line().c_str(), "ready %lld", &saveMicros), 1);
    const std::string versions[2] = {Slurp(dir + "/ref0/" + kind.name),
                                     Slurp(dir + "/ref1/" + kind.name)};
    ASSERT_FALSE(versions[0].empty());
    ASSERT_NE(versions[0].size(), versions[1].size());

    std::mt19937 random(std::random_device{}());
    // Kills within three saves' time: most land in a save, some between or before the first.
    const long long span = 3 * saveMicros + 1000;
    std::uniform_int_distribution<long long> delay(0, span);
    constexpr int kRounds = 20;
    int whole = 0, midSave = 0, round = 0;
    // On a busy machine a save can take far longer than measured at the start: until one
    // save has ended, rounds go on past kRounds with ever longer waits, so that the kills
    // are checked against a file at all.
    for (; round < kRounds || (whole == 0 && round < 3 * kRounds); ++round) {
        const pid_t saver = server.Start();
        ASSERT_GT(saver, 0);
        const long long wait = round < kRounds ? delay(random) : span * (round - kRounds + 2);
        std::this_thread::sleep_for(std::chrono::microseconds(wait));
        ::kill(saver, SIGKILL);
        ASSERT_EQ(server.Line(), "dead\n");

        const int temporaries = CountTemporaries(dir, kind.name);
        EXPECT_LE(temporaries, 1) << "round " << round;
        midSave += temporaries;
        if (::access(target.c_str(), F_OK) != 0)
            continue; // killed before its first save ended
        const std::string now = Slurp(target);
        EXPECT_TRUE(SameVersion(now, versions[0], kind) || SameVersion(now, versions[1], kind))
            << "round " << round << ": " << now.size() << " bytes, versions of "
            << versions[0].size() << " and " << versions[1].size();
        ++whole;
    }
    EXPECT_GT(whole, 0) << "no save ever ended: the kills prove nothing";
    std::printf("%s: %d kills, %d in the middle of a save, %d files checked\n", kind.kind, round,
                midSave, whole);
    std::filesystem::remove_all(dir);
}

// zxd: the time (year to second) and the header checksum that covers it.
INSTANTIATE_TEST_SUITE_P(
    EverySave, KillTest,
    ::testing::Values(Kind{"table", "table.csv", {}}, Kind{"list", "list.csv", {}},
                      Kind{"compare", "compare.csv", {}},
                      Kind{"zxd", "export.zxd", {{36, 43}, {60, 64}}},
                      Kind{"zorparam", "module.zorparam", {}},
                      Kind{"recipe", "recipe.zorparam", {}}, Kind{"groups", "Variables.dat", {}},
                      Kind{"project", "line2.json", {}}),
    [](const ::testing::TestParamInfo<Kind>& info) { return std::string(info.param.kind); });

} // namespace
