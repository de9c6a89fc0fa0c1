// The built program run as a script runs it: its output, its messages and exit codes; and
// its check of a module library before the system loader maps it (one cut short must be
// refused with a reason, not crash the loader).
#include "../link/SimProcess.h"
#include "ModuleFileCheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <QtEndian>

#include <gtest/gtest.h>

using zordrivebench::CheckModuleFile;

namespace {

struct Outcome {
    int code = -1;
    QString out, err;
};

Outcome Program(const QStringList& args) {
    QProcess p;
    p.setProgram(QStringLiteral(PARMIRA_BINARY_DIR "/bin/zordrivebench"));
    p.setArguments(args);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    p.setProcessEnvironment(env);
    p.start();
    Outcome r;
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        r.err = QStringLiteral("(did not finish)");
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

QString WriteFile(const QTemporaryDir& dir, const char* name, const QByteArray& text) {
    const QString path = QDir(dir.path()).filePath(QString::fromUtf8(name));
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(text);
    return path;
}

QByteArray ReadFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Two drives, the second one not connected.
QString TwoDriveProject(const QTemporaryDir& dir) {
    return WriteFile(dir, "two.json", R"({
        "format": "zordrivebench-project", "version": 1, "name": "Bench",
        "modules": [
            {"key": "SPINDLE", "deviceFile": "zd3s_servo.json", "displayName": "主轴 Spindle"},
            {"key": "FEED", "deviceFile": "zv5_inverter.json", "online": false}
        ]})");
}

} // namespace

TEST(ProgramList, PrintsKeyTabDisplayNameForEveryModule) {
    const Outcome demo = Program({"--list"});
    ASSERT_EQ(demo.code, 0) << demo.err.toStdString();
    const QStringList lines = demo.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << demo.out.toStdString();
    const QStringList keys{"ZD3S", "ZD4M", "ZV5"};
    for (int i = 0; i < 3; ++i) {
        const QStringList fields = lines[i].split(QLatin1Char('\t'));
        ASSERT_EQ(fields.size(), 2) << lines[i].toStdString();
        EXPECT_EQ(fields[0], keys[i]);
        EXPECT_FALSE(fields[1].trimmed().isEmpty());
    }

    QTemporaryDir dir;
    const Outcome own = Program({"--project", TwoDriveProject(dir), "--list"});
    ASSERT_EQ(own.code, 0) << own.err.toStdString();
    EXPECT_EQ(own.out.section(QLatin1Char('\n'), 0, 0), QStringLiteral("SPINDLE\t主轴 Spindle"));
    // No name given: the product's name, the same as the demo's drive of that product.
    EXPECT_EQ(own.out.section(QLatin1Char('\n'), 1, 1),
              QStringLiteral("FEED\t") + lines[2].section(QLatin1Char('\t'), 1));
}

// Each refusal has its own exit code and reason; an old file at the target is left as it
// was, and nothing else is left in the folder. A project whose device file is nowhere names
// the place in the project and every folder that was searched.
TEST(ProgramExport, RefusalsSayWhyAndWriteNothing) {
    QTemporaryDir dir;
    const QString project = TwoDriveProject(dir);
    const QString missingDevice = WriteFile(dir, "nodevice.json", R"({
        "format": "zordrivebench-project", "version": 1,
        "modules": [{"key": "A", "deviceFile": "no_such_drive.json"}]})");
    const QString target = WriteFile(dir, "out.csv", "old table\n");
    const QString text = QDir(dir.path()).filePath(QStringLiteral("out.txt"));
    // The module makes one missing folder level, not two.
    const QString deep = QDir(dir.path()).filePath(QStringLiteral("a/b/zd3s.csv"));
    const QString deepParam = QDir(dir.path()).filePath(QStringLiteral("a/b/zd4m.zorparam"));
    struct Case {
        QStringList args;
        int code;
        QStringList said;
    };
    const Case cases[] = {
        // Mistakes in the arguments are refused with the usage.
        {{"--frobnicate"}, 2, {"usage:"}},
        {{"--export", "ZD3S"}, 2, {"usage:"}},
        {{"--project"}, 2, {"usage:"}},
        {{"--list", "--export", "ZD3S", "x.csv"}, 2, {"usage:"}},
        {{"--list", "--screenshot", "x.png"}, 2, {"usage:"}},
        {{"--project", "a.json", "--project", "b.json", "--list"}, 2, {"usage:"}},
        {{"--access-code", "2468", "--list"}, 2, {"usage:"}},
        {{"--screenshot", "/proc/no-such-folder/shot.png"}, 1, {"/proc/no-such-folder"}},
        {{"--project", project, "--export", "ZD3S", target}, 4, {"\"ZD3S\"", "SPINDLE, FEED"}},
        // Keys are compared exactly, as the module compares them.
        {{"--project", project, "--export", "spindle", target}, 4, {}},
        {{"--project", project, "--export", "FEED", target}, 5, {"offline"}},
        {{"--project", project, "--export", "SPINDLE", text}, 2, {".csv"}},
        {{"--access-code", "1357", "--export", "ZD3S", target}, 10, {}},
        {{"--export", "ZD3S", deep}, 7, {deep}},
        {{"--export", "ZD4M", deepParam}, 7, {deepParam}},
        {{"--project", missingDevice, "--list"},
         3,
         {missingDevice + ": modules[0].deviceFile: \"no_such_drive.json\"", dir.path() + ", ",
          "/devices"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const Outcome r = Program(c.args);
        EXPECT_EQ(r.code, c.code) << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty());
        for (const QString& said : c.said)
            EXPECT_TRUE(r.err.contains(said)) << r.err.toStdString();
    }
    EXPECT_EQ(ReadFile(target), QByteArray("old table\n"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{"nodevice.json", "out.csv", "two.json"}));
}

// A drive on the wire that answers but refuses some reads: not an offline drive, and the
// message names each refused parameter.
TEST(ProgramExport, RefusedReadsAreNamedUnderTheirOwnExitCode) {
    // Started by fork, as the link tests start it: a start through QProcess blinds the
    // thread sanitizer to this thread's locks.
    linktest::SimProcess sim({"--tcp", "127.0.0.1:0", "--refuse", "521,12814", "zd3s_servo.json"});
    ASSERT_TRUE(sim.Started()) << "zordrive-sim did not start";
    const QByteArray port = QByteArray::number(sim.Port());
    QTemporaryDir dir;
    const QString project = WriteFile(dir, "tcp.json",
                                      R"({"format": "zordrivebench-project", "version": 1,
        "modules": [{"key": "S", "deviceFile": "zd3s_servo.json",
                     "link": {"type": "modbus-tcp", "host": "127.0.0.1", "port": )" +
                                          port + "}}]}");
    const QString target = QDir(dir.path()).filePath(QStringLiteral("s.csv"));
    const Outcome r =
        Program({"--project", project, "--access-code", "2468", "--export", "S", target});
    EXPECT_EQ(r.code, 11) << r.err.toStdString();
    for (const char* named : {"0x0209 (521) H02-09", "0x320E (12814) H32-14"})
        EXPECT_TRUE(r.err.contains(QLatin1String(named))) << r.err.toStdString();
    EXPECT_FALSE(QFile::exists(target));
}

TEST(ProgramExport, AnOnlineDriveIsWrittenToTheFileAndReplacesTheOldOne) {
    QTemporaryDir dir;
    const QString target = WriteFile(dir, "zd3s.CSV", "old table\n");
    const Outcome r = Program({"--export", "ZD3S", target});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.isEmpty()) << r.err.toStdString();
    const QByteArray table = ReadFile(target);
    EXPECT_NE(table, QByteArray("old table\n"));
    EXPECT_TRUE(table.contains("H02-19")) << table.left(400).toStdString();

    // A missing last folder level is made, as the module does.
    const QString fresh = QDir(dir.path()).filePath(QStringLiteral("new/zd4m.csv"));
    EXPECT_EQ(Program({"--export", "ZD4M", fresh}).code, 0);
    EXPECT_TRUE(QFile::exists(fresh));

    // The compressed export by its extension: format words, then the end mark after the
    // records the header counts.
    const QString zxd = QDir(dir.path()).filePath(QStringLiteral("zd3s.zxd"));
    ASSERT_EQ(Program({"--export", "ZD3S", zxd}).code, 0);
    const QByteArray bytes = ReadFile(zxd);
    ASSERT_GT(bytes.size(), 268);
    EXPECT_EQ(bytes.left(4), QByteArray("\x01\x00\x00\x01", 4));
    const auto rows = qFromLittleEndian<quint32>(bytes.constData() + 44);
    EXPECT_EQ(qFromLittleEndian<quint32>(bytes.constData() + 256 + 16 * rows), 0x55AA55AAu);

    // And the parameter file, whatever the case of its extension.
    const QString param = WriteFile(dir, "zd4m.ZorParam", "old file\n");
    ASSERT_EQ(Program({"--export", "ZD4M", param}).code, 0);
    EXPECT_TRUE(ReadFile(param).startsWith("ZORPARAM")) << ReadFile(param).left(20).toStdString();
    // Only the files themselves: no staging copy is left.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{"zd3s.CSV", "zd3s.zxd", "zd4m.ZorParam"}));
}

TEST(ProgramExport, TheTableIsSavedAsOpeningTheFileWouldWriteIt) {
    QTemporaryDir dir;
    // Through a link to a file of mode 600: the link stays, the file keeps its mode.
    const QString real = WriteFile(dir, "real.csv", "old table\n");
    QFile::setPermissions(real, QFile::ReadOwner | QFile::WriteOwner);
    const QString link = QDir(dir.path()).filePath(QStringLiteral("link.csv"));
    ASSERT_TRUE(QFile::link(real, link));
    ASSERT_EQ(Program({"--export", "ZD3S", link}).code, 0);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(ReadFile(real).contains("H02-19"));
    const QFile::Permissions ownerGroupOther(0x7077);
    EXPECT_EQ(QFile::permissions(real) & ownerGroupOther, QFile::ReadOwner | QFile::WriteOwner);

    // A full disk is named as the system names it.
    const QString full = QDir(dir.path()).filePath(QStringLiteral("full.csv"));
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), full));
    const Outcome r = Program({"--export", "ZD3S", full});
    EXPECT_EQ(r.code, 7);
    EXPECT_TRUE(r.err.contains(QStringLiteral("No space left on device"))) << r.err.toStdString();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System).size(), 3);
}

TEST(ProgramWindow, TheScreenshotIsTakenWithTheFirstModulesPanelUp) {
    QTemporaryDir dir;
    const QString png = QDir(dir.path()).filePath(QStringLiteral("shot.png"));
    const Outcome r = Program({"--screenshot", png});
    // Exit 0 only when the panel came up before the picture was taken.
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(png));
    EXPECT_TRUE(ReadFile(png).startsWith("\x89PNG"));
}

TEST(ModuleFile, AWholeLibraryPassesAndEveryCutCopyIsRefused) {
    QFile whole(QStringLiteral(PARMIRA_BINARY_DIR "/bin/QXParmira.so"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    QString why;
    ASSERT_TRUE(CheckModuleFile(whole.fileName(), &why)) << why.toStdString();

    QTemporaryDir dir;
    // Inside the header, inside the program headers, inside the segments, and one byte
    // short of the section table at the end.
    for (const qsizetype size : {qsizetype(0), qsizetype(40), qsizetype(1000), qsizetype(100000),
                                 bytes.size() / 2, bytes.size() - 1}) {
        const QString cut = WriteFile(dir, "QXParmira.so", bytes.left(size));
        why.clear();
        EXPECT_FALSE(CheckModuleFile(cut, &why)) << size;
        EXPECT_FALSE(why.isEmpty()) << size;
    }
    EXPECT_FALSE(CheckModuleFile(dir.path(), &why)) << "a folder";
    EXPECT_FALSE(CheckModuleFile(dir.filePath(QStringLiteral("none.so")), &why));
    EXPECT_FALSE(
        CheckModuleFile(QStringLiteral(PARMIRA_BINARY_DIR "/devices/zd3s_servo.json"), &why));
}
