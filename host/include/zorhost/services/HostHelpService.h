// The host's help viewer (IHostHelpService). The reference host ships no help: a request
// is answered with "not shown", and the module carries on without it.
#pragma once

#include "module/host/IHostHelpService.h"

namespace zorhost {

class CHostHelpService : public IHostHelpService {
public:
    BOOL ShowHelp(int, const CString&, const CString&, int) override { return 0; }
};

} // namespace zorhost
