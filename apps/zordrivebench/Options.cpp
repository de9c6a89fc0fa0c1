#include "Options.h"

namespace zordrivebench {

const char* UsageText() {
    return "usage: zordrivebench [--project FILE] [--screenshot FILE.png]\n"
           "       zordrivebench [--project FILE] --list\n"
           "       zordrivebench [--project FILE] --export KEY FILE.csv|FILE.zxd\n"
           "\n"
           "Without --project the built-in demo project with three simulated drives opens.\n"
           "--list prints one line per module: its key, a tab, its display name.\n"
           "--export writes the parameter table of module KEY to FILE.csv, or its compressed\n"
           "export to FILE.zxd, no window shown.\n"
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
        } else if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            parsed.help = true;
        } else {
            error = QStringLiteral("unknown argument: %1").arg(a);
            return false;
        }
    }
    if (parsed.list && !parsed.exportKey.isEmpty()) {
        error = QStringLiteral("--list and --export are used one at a time");
        return false;
    }
    if (parsed.IsCommand() && !parsed.screenshot.isEmpty()) {
        error = QStringLiteral("--screenshot needs the window; it doesn't go with %1")
                    .arg(parsed.list ? QStringLiteral("--list") : QStringLiteral("--export"));
        return false;
    }
    options = parsed;
    return true;
}

} // namespace zordrivebench
