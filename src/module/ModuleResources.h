// The module's resources: string table and dialog templates, registered under the
// module's resource handle when the module starts.
#pragma once

#include <afx/afxtypes.h>

#include <cstddef>

// Ids shared by the shell and the panel.
constexpr UINT IDD_PARMIRA_PANEL = 1951;
constexpr UINT IDS_PARAMETER_LIST = 1952;
constexpr UINT IDC_TOTAL_COUNT = 2000;
constexpr UINT IDC_CURRENT_COUNT = 2001;
constexpr UINT IDC_TOTAL_LABEL = 2002;
constexpr UINT IDC_CURRENT_LABEL = 2003;
constexpr UINT IDC_TABLE_PLACEHOLDER = 2091;
constexpr UINT IDC_NOTICE_STRIP = 1012;

void RegisterModuleResources(HINSTANCE module);

// One entry of the module's string table: texts as written, in Chinese; the host's
// translator turns them into the user's language. An empty text is an entry that is
// there but says nothing (a caption left blank on purpose).
struct ModuleStringEntry {
    UINT id;
    const char* text;
};

// The whole string table in ascending id order, as RegisterModuleResources registers it.
// For code that needs to walk every text (tests, translation checks).
const ModuleStringEntry* ModuleStringTable(std::size_t* count);
