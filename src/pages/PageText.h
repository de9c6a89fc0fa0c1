// The few text helpers the list pages add to the shared value text: string table lookups
// in the user's language.
#pragma once

#include <afx/CString.h>

namespace pagetext {

// String `id` of the module's table, in the user's language.
CString LoadString(UINT id);

} // namespace pagetext
