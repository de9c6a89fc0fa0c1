#include "zorhost/services/Oscilloscope.h"

#include "zorhost/sim/SimulatedDrive.h"

#include <afx/afxqt.h>

#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>

namespace zorhost {

// A plain trace of the watched drive's speed samples.
class COscilloscopePanel::View : public QWidget {
public:
    View() {
        setWindowTitle(QStringLiteral("Oscilloscope"));
        resize(480, 240);
    }
    void SetSamples(std::vector<double> samples) {
        m_samples = std::move(samples);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.fillRect(rect(), Qt::black);
        p.setPen(QColor(0, 90, 0));
        for (int i = 1; i < 4; ++i)
            p.drawLine(0, height() * i / 4, width(), height() * i / 4);
        if (m_samples.size() < 2)
            return;
        const auto [lo, hi] = std::minmax_element(m_samples.begin(), m_samples.end());
        const double low = std::min(*lo, 0.0), span = std::max(*hi - low, 1.0);
        QPainterPath path;
        for (size_t i = 0; i < m_samples.size(); ++i) {
            const double x = double(i) * width() / double(m_samples.size() - 1);
            const double y = height() - 8 - (m_samples[i] - low) / span * (height() - 16);
            i == 0 ? path.moveTo(x, y) : path.lineTo(x, y);
        }
        p.setPen(QPen(Qt::green, 1.5));
        p.drawPath(path);
    }

private:
    std::vector<double> m_samples;
};

COscilloscopePanel::COscilloscopePanel() = default;

COscilloscopePanel::~COscilloscopePanel() {
    if (m_hwnd)
        AfxReleaseHostWidget(m_hwnd);
    delete m_view;
}

void COscilloscopePanel::Watch(sim::SimulatedDrive* drive) {
    m_drive = drive;
    Update();
}

void COscilloscopePanel::Show(bool visible) {
    if (!m_view) {
        if (!visible)
            return;
        m_view = new View;
        m_hwnd = AfxWrapHostWidget(m_view);
    }
    m_view->setVisible(visible);
    Update();
}

bool COscilloscopePanel::IsVisible() const {
    return m_view && m_view->isVisible();
}

void COscilloscopePanel::Update() {
    if (m_view && m_view->isVisible())
        m_view->SetSamples(m_drive ? m_drive->OscilloscopeSamples() : std::vector<double>());
}

} // namespace zorhost
