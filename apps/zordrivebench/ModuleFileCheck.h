// What can be told about a module library before the system loader maps it. The loader
// trusts the file: a library cut short (an interrupted copy, a full disk) is mapped past its
// end and the process dies of a bus error instead of reporting a broken file.
#pragma once

#include <QString>

namespace zordrivebench {

// True when `path` is a regular file holding a whole ELF shared object of this machine: the
// header, the program headers and every segment and section they describe lie inside the
// file. Otherwise `why` says what is wrong.
bool CheckModuleFile(const QString& path, QString* why);

} // namespace zordrivebench
