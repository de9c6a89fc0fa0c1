// The oscilloscope plug-in of the reference host: a window that shows the samples of the
// drive it watches, and the communication state that tells whether any drive samples.
#pragma once

#include "module/host/IHostCommState.h"
#include "module/host/IOscilloscopePanel.h"

#include <functional>
#include <memory>

class QWidget;

namespace zorhost {

namespace sim {
class SimulatedDrive;
}

class COscilloscopePanel : public IOscilloscopePanel {
public:
    // Asks whether any drive of the project samples now.
    using BusyProbe = std::function<bool()>;

    COscilloscopePanel();
    ~COscilloscopePanel() override;

    void SetBusyProbe(BusyProbe probe) { m_busy = std::move(probe); }
    // The drive whose samples the window draws; not owned, null for none.
    void Watch(sim::SimulatedDrive* drive);

    // The window is made on first show (user-interface thread, QApplication needed).
    void Show(bool visible);
    bool IsVisible() const;
    bool IsBusy() const { return m_busy && m_busy(); }
    // Redraws the window from the watched drive's samples.
    void Update();

    // Null until the window was first shown.
    HWND GetWindow() override { return m_hwnd; }

private:
    class View;
    View* m_view = nullptr; // owned; a top-level window
    HWND m_hwnd = nullptr;
    sim::SimulatedDrive* m_drive = nullptr;
    BusyProbe m_busy;
};

// IHostCommState over the same probe.
class CHostCommState : public IHostCommState {
public:
    explicit CHostCommState(const COscilloscopePanel& scope) : m_scope(scope) {}
    BOOL IsOscilloscopeRunning() override { return m_scope.IsBusy() ? 1 : 0; }

private:
    const COscilloscopePanel& m_scope;
};

} // namespace zorhost
