// The program's command line.
#pragma once

#include <QString>
#include <QStringList>

namespace zordrivebench {

struct Options {
    QString projectFile; // empty: the built-in demo project
    QString screenshot;  // render the main window to this PNG and exit
    bool list = false;
    QString exportKey;
    QString exportFile;
    QString downloadKey;
    QString downloadFile;
    // --compare A B [--same] [--out FILE.csv] [--module KEY]
    QString compareA;
    QString compareB;
    bool compareSame = false;
    QString compareOut;
    QString contextModule;
    // Raises every module above the lowest access level before --export, --download or
    // --compare, as the login box would (the drive gets the code where it keeps a level).
    QString accessCode;
    bool help = false;
    bool version = false;

    bool IsCommand() const {
        return list || !exportKey.isEmpty() || !downloadKey.isEmpty() || !compareA.isEmpty();
    }
};

// `args` without the program name. On failure `error` says what was wrong.
bool ParseOptions(const QStringList& args, Options& options, QString& error);
const char* UsageText();
// "zordrivebench <version>", one line.
QString VersionText();

// Exit codes of the command-line forms.
enum ExitCode {
    kExitOk = 0,
    kExitUsage = 2,
    kExitProject = 3,       // the project can't be loaded
    kExitUnknownModule = 4, // no module has the key
    kExitOffline = 5,       // the module's drive is offline or doesn't answer
    kExitPlugin = 6,        // the parameter module can't be loaded
    kExitNoFile = 7,        // the export left no file
    kExitBadFile = 8, // a file to download or compare can't be read, or has no module to read it by
    kExitWriteFailed = 9, // the drive refused or lost some writes of a download
    kExitAccessCode = 10, // --access-code was not accepted
    kExitReadFailed = 11, // the drive answered, but refused some reads of an export or compare
    // The window (and --screenshot): 1 when no module panel came up or the picture could not
    // be written.
    kExitNoPanel = 1,
    // --compare exits as diff does: 0 nothing differs, 1 something differs, 2 and above
    // for errors.
    kExitDiffers = 1,
};

} // namespace zordrivebench
