// zordrivebench --compare run as a script runs it: the rows as CSV and diff's exit codes.
#include "TestFiles.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Outcome {
    int code = -1;
    QByteArray out;
    QString err;
};

Outcome Program(const QStringList& args) {
    QProcess p;
    p.setProgram(QStringLiteral(PARMIRA_BINARY_DIR "/bin/zordrivebench"));
    p.setArguments(args);
    p.start();
    Outcome r;
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = p.readAllStandardOutput();
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

TEST(CompareCommand, PrintsTheRowsAsCsvAndExitsAsDiffDoes) {
    // A drive read twice agrees with itself: a table of two lines, exit 0.
    const Outcome same = Program({"--compare", "ZD3S", "ZD3S"});
    EXPECT_EQ(same.code, 0) << same.err.toStdString();
    const QList<QByteArray> lines = same.out.split('\n');
    ASSERT_EQ(lines.size(), 3); // two lines, each ended
    EXPECT_TRUE(lines[0].startsWith("Time,"));
    EXPECT_EQ(QString::fromUtf8(lines[1]),
              QStringLiteral("行号,参数1,参数名称1,比较值1,参数2,参数名称2,比较值2"));

    // --same lists the agreeing rows; the exit code still tells that something differs.
    QTemporaryDir dir;
    const QString out = QDir(dir.path()).filePath(QStringLiteral("same.csv"));
    const Outcome factory = Program({"--compare", "ZD3S", "ZD3S:factory", "--same", "--out", out});
    EXPECT_EQ(factory.code, 1) << factory.err.toStdString();
    EXPECT_TRUE(factory.out.isEmpty());
    const QList<QByteArray> rows = QByteArray::fromStdString(Slurp(out.toStdString())).split('\n');
    ASSERT_GT(rows.size(), 100);
    EXPECT_TRUE(rows[2].startsWith("1,H00-00,"));

    // A parameter table meets the drive by address: a row whose code was changed in the
    // file still finds its parameter.
    const QString table = QDir(dir.path()).filePath(QStringLiteral("zd3s.csv"));
    ASSERT_EQ(Program({"--export", "ZD3S", table}).code, 0);
    std::string bytes = Slurp(table.toStdString());
    const std::string row = "\nH06-04,速度指令键盘设定值,200,";
    const size_t at = bytes.find(row);
    ASSERT_NE(at, std::string::npos);
    Spit(table.toStdString(), bytes.replace(at, row.size(), "\nX06-04,速度指令键盘设定值,300,"));
    const Outcome byAddress = Program({"--compare", "ZD3S", table});
    EXPECT_EQ(byAddress.code, 1) << byAddress.err.toStdString();
    const QList<QByteArray> differing = byAddress.out.split('\n');
    ASSERT_EQ(differing.size(), 4);
    EXPECT_EQ(QString::fromUtf8(differing[2]),
              QStringLiteral("1,H06-04,速度指令键盘设定值,200,X06-04,速度指令键盘设定值,300"));

    for (const auto& [args, code] : std::vector<std::pair<QStringList, int>>{
             {{"--compare", "ZD3S"}, 2},
             {{"--compare", "ZD3S", "NOPE"}, 4},
             {{"--compare", "ZD3S", QDir(dir.path()).filePath(QStringLiteral("none.zorparam"))},
              8}}) {
        const Outcome r = Program(args);
        EXPECT_EQ(r.code, code) << args.join(' ').toStdString();
        EXPECT_TRUE(r.out.isEmpty());
    }
}

} // namespace
