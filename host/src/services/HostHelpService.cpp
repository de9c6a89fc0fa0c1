#include "zorhost/services/HostHelpService.h"

namespace zorhost {

BOOL CHostHelpService::ShowHelp(int command, const CString& helpFile, const CString& context,
                                int data) {
    HelpRequest request{command, helpFile, context, data};
    Viewer viewer;
    {
        std::lock_guard lock(m_mutex);
        m_requests.push_back(request);
        viewer = m_viewer;
    }
    return viewer && viewer(request) ? 1 : 0;
}

std::vector<HelpRequest> CHostHelpService::Requests() const {
    std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace zorhost
