// The host's help viewer (IHostHelpService). Every request is kept; the program opens the
// help file in the desktop's browser when one is configured to.
#pragma once

#include "module/host/IHostHelpService.h"

#include <functional>
#include <mutex>
#include <vector>

namespace zorhost {

struct HelpRequest {
    int command = 0;
    CString helpFile;
    CString context;
    int data = 0;
};

class CHostHelpService : public IHostHelpService {
public:
    // Shows the help; returns whether it was shown. Without a viewer nothing is shown.
    using Viewer = std::function<bool(const HelpRequest&)>;

    void SetViewer(Viewer viewer) { m_viewer = std::move(viewer); }

    BOOL ShowHelp(int command, const CString& helpFile, const CString& context, int data) override;

    std::vector<HelpRequest> Requests() const;

private:
    mutable std::mutex m_mutex;
    std::vector<HelpRequest> m_requests;
    Viewer m_viewer;
};

} // namespace zorhost
