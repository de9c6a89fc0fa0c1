#include "Options.h"

namespace zordrivebench {

const char* UsageText() {
    return "usage: zordrivebench [--project FILE] [--screenshot FILE.png]\n"
           "       zordrivebench [--project FILE] --list\n"
           "       zordrivebench [--project FILE] --export KEY FILE.csv|FILE.zorparam|FILE.zxd\n"
           "       zordrivebench [--project FILE] --download KEY FILE\n"
           "       zordrivebench [--project FILE] --compare A B [--same] [--out FILE.csv]\n"
           "                     [--module KEY]\n"
           "\n"
           "Without --project the built-in demo project with three simulated drives opens.\n"
           "--list prints one line per module: its key, a tab, its display name.\n"
           "--export writes the parameter table of module KEY to FILE.csv, its parameter\n"
           "file to FILE.zorparam, or its compressed export to FILE.zxd, no window shown.\n"
           "--download writes FILE (.zorparam or a parameter table) to the drive of KEY.\n"
           "--compare sets two parameter sets side by side: each is a module KEY (its\n"
           "current values, read from the drive), KEY:factory, a .zorparam file or a .csv\n"
           "parameter table. It prints the differing rows (--same: the agreeing ones) as\n"
           "CSV, or writes them to --out, and exits 0 when nothing differs, 1 when\n"
           "something does, 2 and above on errors. A file is read by the module of its\n"
           "device type, or by --module KEY.\n"
           "Without a display, or with --screenshot, the main window is rendered to a PNG\n"
           "after start-up and the program exits.\n";
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
