#include "Options.h"

namespace zordrivebench {

const char* UsageText() {
    return "usage: zordrivebench [--project FILE] [--screenshot FILE.png]\n"
           "       zordrivebench [--project FILE] --list\n"
           "       zordrivebench [--project FILE] [--access-code CODE] --export KEY\n"
           "                     FILE.csv|FILE.zorparam|FILE.zxd\n"
           "       zordrivebench [--project FILE] [--access-code CODE] --download KEY FILE\n"
           "       zordrivebench [--project FILE] [--access-code CODE] --compare A B [--same]\n"
           "                     [--out FILE.csv] [--module KEY]\n"
           "       zordrivebench --help | --version\n"
           "\n"
           "Options:\n"
           "  --project FILE        open the project FILE (JSON); without it the built-in demo\n"
           "                        project with three simulated drives opens\n"
           "  --screenshot FILE.png render the main window to FILE.png once the first module's\n"
           "                        panel is up, then exit (without a display this is the\n"
           "                        default, to zordrivebench.png)\n"
           "  --list                print one line per module: its key, a tab, its display name\n"
           "  --export KEY FILE     read the drive of module KEY and write its parameter table\n"
           "                        (.csv), parameter file (.zorparam) or compressed export\n"
           "                        (.zxd), no window shown\n"
           "  --download KEY FILE   write FILE (.zorparam or a .csv parameter table) to the\n"
           "                        drive of KEY\n"
           "  --compare A B         set two parameter sets side by side: each is a module KEY\n"
           "                        (its current values, read from the drive), KEY:factory, a\n"
           "                        .zorparam file or a .csv parameter table; prints the\n"
           "                        differing rows as CSV\n"
           "  --same                with --compare: the agreeing rows instead\n"
           "  --out FILE.csv        with --compare: write the rows to FILE.csv\n"
           "  --module KEY          with --compare: read files by module KEY rather than by the\n"
           "                        module of their device type\n"
           "  --access-code CODE    with --export, --download and --compare: log every module\n"
           "                        in with the factory access code CODE first. Without it they\n"
           "                        work at the lowest access level, which sees only a part\n"
           "                        of a drive's parameters\n"
           "  --help, -h            this text\n"
           "  --version             the program's version\n"
           "\n"
           "Exit codes:\n"
           "  0   done (--compare: nothing differs)\n"
           "  1   --compare: something differs; the window: no module panel came up, or the\n"
           "      screenshot could not be written\n"
           "  2   wrong arguments\n"
           "  3   the project file can't be loaded (or a device file it names)\n"
           "  4   no module with that key\n"
           "  5   the module's drive is offline or doesn't answer\n"
           "  6   the module library QXParmira.so is missing or can't be loaded\n"
           "  7   no file came about (export), or the output can't be written (compare)\n"
           "  8   a file to download or compare can't be read, or no module has its device type\n"
           "  9   the drive refused or lost some writes of a download\n"
           "  10  the access code was not accepted\n"
           "  11  the drive answered but would not give some parameters (each is named)\n"
           "\n"
           "Environment:\n"
           "  ZOR_DEVICES_DIR       the folder of the shipped device descriptions (default:\n"
           "                        devices/ beside the program's folder)\n";
}

QString VersionText() {
    return QStringLiteral("zordrivebench %1").arg(QStringLiteral(PARMIRA_VERSION));
}

bool ParseOptions(const QStringList& args, Options& options, QString& error) {
    Options parsed;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        auto value = [&](QString& into) {
            if (i + 1 >= args.size() || args[i + 1].isEmpty()) {
                error = QStringLiteral("%1 needs a value").arg(a);
                return false;
            }
            into = args[++i];
            return true;
        };
        if (a == QLatin1String("--project")) {
            if (!parsed.projectFile.isEmpty()) {
                error = QStringLiteral("--project is given twice");
                return false;
            }
            if (!value(parsed.projectFile))
                return false;
        } else if (a == QLatin1String("--screenshot")) {
            if (!value(parsed.screenshot))
                return false;
        } else if (a == QLatin1String("--list")) {
            parsed.list = true;
        } else if (a == QLatin1String("--export")) {
            if (!value(parsed.exportKey))
                return false;
            if (i + 1 >= args.size() || args[i + 1].isEmpty()) {
                error = QStringLiteral("--export needs a module key and a file");
                return false;
            }
            parsed.exportFile = args[++i];
        } else if (a == QLatin1String("--download")) {
            if (!value(parsed.downloadKey))
                return false;
            if (i + 1 >= args.size() || args[i + 1].isEmpty()) {
                error = QStringLiteral("--download needs a module key and a file");
                return false;
            }
            parsed.downloadFile = args[++i];
        } else if (a == QLatin1String("--compare")) {
            if (i + 2 >= args.size() || args[i + 1].isEmpty() || args[i + 2].isEmpty()) {
                error = QStringLiteral("--compare needs two parameter sets");
                return false;
            }
            parsed.compareA = args[++i];
            parsed.compareB = args[++i];
        } else if (a == QLatin1String("--same")) {
            parsed.compareSame = true;
        } else if (a == QLatin1String("--out")) {
            if (!value(parsed.compareOut))
                return false;
        } else if (a == QLatin1String("--module")) {
            if (!value(parsed.contextModule))
                return false;
        } else if (a == QLatin1String("--access-code")) {
            if (!value(parsed.accessCode))
                return false;
        } else if (a == QLatin1String("--version")) {
            parsed.version = true;
        } else if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            parsed.help = true;
        } else {
            error = QStringLiteral("unknown argument: %1").arg(a);
            return false;
        }
    }
    if (int(parsed.list) + int(!parsed.exportKey.isEmpty()) + int(!parsed.downloadKey.isEmpty()) +
            int(!parsed.compareA.isEmpty()) >
        1) {
        error = QStringLiteral("--list, --export, --download and --compare are used one at a time");
        return false;
    }
    if (parsed.compareA.isEmpty() &&
        (parsed.compareSame || !parsed.compareOut.isEmpty() || !parsed.contextModule.isEmpty())) {
        error = QStringLiteral("--same, --out and --module go with --compare only");
        return false;
    }
    if (!parsed.accessCode.isEmpty() && parsed.exportKey.isEmpty() &&
        parsed.downloadKey.isEmpty() && parsed.compareA.isEmpty()) {
        error = QStringLiteral("--access-code goes with --export, --download or --compare");
        return false;
    }
    if (parsed.IsCommand() && !parsed.screenshot.isEmpty()) {
        error = QStringLiteral("--screenshot needs the window; it doesn't go with %1")
                    .arg(parsed.list                   ? QStringLiteral("--list")
                         : !parsed.exportKey.isEmpty() ? QStringLiteral("--export")
                         : !parsed.compareA.isEmpty()  ? QStringLiteral("--compare")
                                                       : QStringLiteral("--download"));
        return false;
    }
    options = parsed;
    return true;
}

} // namespace zordrivebench
