#include "zorhost/services/HostProgressBox.h"

#include <QApplication>
#include <QProgressDialog>

namespace zorhost {

CHostProgressBox::CHostProgressBox(Observer observer, bool english)
    : m_observer(std::move(observer)), m_english(english) {}

CHostProgressBox::~CHostProgressBox() {
    if (m_visible)
        Show(0, 0);
}

void CHostProgressBox::AddStep(IHostProgressStep* step) {
    if (step == nullptr)
        return;
    m_steps.push_back(*static_cast<CHostProgressStep*>(step));
    if (m_steps.size() == 1)
        m_position = m_steps.front().m_lowest;
    UpdateDialog();
}

CString CHostProgressBox::Text() const {
    return m_steps.empty() ? CString() : m_steps[m_current].m_text;
}

int CHostProgressBox::Lowest() const {
    return m_steps.empty() ? 0 : m_steps[m_current].m_lowest;
}

int CHostProgressBox::Highest() const {
    return m_steps.empty() ? 0 : m_steps[m_current].m_highest;
}

void CHostProgressBox::Show(int command, int) {
    const bool show = command != 0;
    if (show == m_visible)
        return;
    m_visible = show;
    if (show && qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) {
        m_dialog = std::make_unique<QProgressDialog>();
        m_dialog->setWindowTitle(QStringLiteral("ZorDriveBench"));
        m_dialog->setCancelButtonText(m_english ? QStringLiteral("Cancel")
                                                : QStringLiteral("取消"));
        m_dialog->setWindowModality(Qt::ApplicationModal);
        m_dialog->setAutoClose(false);
        m_dialog->setAutoReset(false);
        m_dialog->setMinimumDuration(0);
        QObject::connect(m_dialog.get(), &QProgressDialog::canceled, [this] { Cancel(); });
        UpdateDialog();
        m_dialog->show();
    } else if (!show) {
        m_dialog.reset();
    }
    Tell(show ? Event::Shown : Event::Hidden);
}

void CHostProgressBox::StepOn() {
    if (m_steps.empty())
        return;
    CHostProgressStep& step = m_steps[m_current];
    m_position = std::min(m_position + step.m_increment, step.m_highest);
    // A full step hands over to the next one.
    if (m_position >= step.m_highest && m_current + 1 < m_steps.size()) {
        ++m_current;
        m_position = m_steps[m_current].m_lowest;
    }
    UpdateDialog();
    Tell(Event::Stepped);
}

void CHostProgressBox::UpdateDialog() {
    if (!m_dialog || m_steps.empty())
        return;
    const CHostProgressStep& step = m_steps[m_current];
    m_dialog->setLabelText(QString::fromStdString(step.m_text.str()));
    m_dialog->setRange(step.m_lowest, std::max(step.m_lowest, step.m_highest));
    m_dialog->setValue(m_position);
}

void CHostProgressBox::Tell(Event event) {
    if (m_observer)
        m_observer(*this, event);
}

} // namespace zorhost
