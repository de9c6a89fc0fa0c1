// Where the program finds its parts. Everything is relative to the running executable, so
// that a build tree and an installed (or merely unpacked) tree work from any folder:
//
//   <root>/bin/zordrivebench, zordrive-sim   the programs (in a package, /usr/bin links here)
//   <root>/modules/QXParmira.so              the module (a build tree keeps it beside bin/'s
//                                            programs instead)
//   <root>/devices/*.json                    device descriptions ($ZOR_DEVICES_DIR overrides)
//   <root>/Config/*.ini                      the module's configuration (<program dir>/../Config)
//
// In the package <root> is /usr/lib/zordrivebench; its devices/ and Config/ link to
// /usr/share/zordrivebench.
#pragma once

#include <string>

namespace zorhost::layout {

// The folder of the running executable, links resolved; "." when it can't be told.
std::string ProgramDir();
// The module library: beside the program when it is there, else in <root>/modules.
std::string ModuleLibraryPath();
// The shipped device descriptions: $ZOR_DEVICES_DIR when set, else <root>/devices.
std::string DevicesDir();

} // namespace zorhost::layout
