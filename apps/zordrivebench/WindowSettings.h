// What the program remembers between runs: the window's geometry and docks, the splitter
// between the project tree and the tabs, the language and the last project. These are the
// host's settings; the module keeps nothing of its own.
#pragma once

#include <QString>

class QSettings;

namespace zordrivebench {

class MainWindow;

// Applies what `settings` holds to the window (before it is shown); what is missing stays.
void RestoreWindowSettings(QSettings& settings, MainWindow& window);
void SaveWindowSettings(QSettings& settings, const MainWindow& window);
// The project file the window had open at its last end; empty for the demo, for none, and
// for a file that is gone since.
QString LastProject(QSettings& settings);

} // namespace zordrivebench
