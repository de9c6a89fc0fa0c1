// A module library is checked before the system loader maps it: one cut short must be
// refused with a reason, not crash the loader.
#include "ModuleFileCheck.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using zordrivebench::CheckModuleFile;

TEST(ModuleFile, AWholeLibraryPassesAndEveryCutCopyIsRefused) {
    QFile whole(QStringLiteral(PARMIRA_BINARY_DIR "/bin/QXParmira.so"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    QString why;
    ASSERT_TRUE(CheckModuleFile(whole.fileName(), &why)) << why.toStdString();

    QTemporaryDir dir;
    const QString cut = dir.filePath(QStringLiteral("QXParmira.so"));
    // Inside the header, inside the program headers, inside the segments, and one byte
    // short of the section table at the end.
    for (const qsizetype size : {qsizetype(0), qsizetype(40), qsizetype(1000), qsizetype(100000),
                                 bytes.size() / 2, bytes.size() - 1}) {
        QFile f(cut);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes.left(size));
        f.close();
        why.clear();
        EXPECT_FALSE(CheckModuleFile(cut, &why)) << size;
        EXPECT_FALSE(why.isEmpty()) << size;
    }
    EXPECT_FALSE(CheckModuleFile(dir.path(), &why)) << "a folder";
    EXPECT_FALSE(CheckModuleFile(dir.filePath(QStringLiteral("none.so")), &why));
    EXPECT_FALSE(
        CheckModuleFile(QStringLiteral(PARMIRA_BINARY_DIR "/devices/zd3s_servo.json"), &why));
}
