// The host's progress box (IHostProgressBox): a bar with a text and a cancel button. In a
// program with widgets it is a real progress dialog; without, it only keeps its state.
// Every change is also told to an observer, the seam through which tests watch the box
// and press its cancel button.
#pragma once

#include "module/host/IHostProgressBox.h"
#include "module/host/IHostProgressStep.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QProgressDialog;

namespace zorhost {

class CHostProgressStep : public IHostProgressStep {
public:
    void SetText(const CString& text) override { m_text = text; }
    void SetLowest(int position) override { m_lowest = position; }
    void SetHighest(int position) override { m_highest = position; }
    void SetIncrement(int increment) override { m_increment = increment; }

    CString m_text;
    int m_lowest = 0;
    int m_highest = 100;
    int m_increment = 1;
};

class CHostProgressBox : public IHostProgressBox {
public:
    enum class Event { Shown, Stepped, Hidden };
    using Observer = std::function<void(CHostProgressBox& box, Event event)>;

    // `english`: the language of the cancel button.
    CHostProgressBox(Observer observer, bool english);
    ~CHostProgressBox() override;

    void Release() override { delete this; }
    IHostProgressStep* NewStep() override { return new CHostProgressStep; }
    void SetMode(int mode) override { m_mode = mode; }
    void AddStep(IHostProgressStep* step) override;
    void Show(int command, int flags) override;
    void StepOn() override;
    BOOL IsCancelled() override { return m_cancelled.load() ? 1 : 0; }

    // What the cancel button does.
    void Cancel() { m_cancelled = true; }
    bool IsVisible() const { return m_visible; }
    CString Text() const;
    int Position() const { return m_position; }
    int Lowest() const;
    int Highest() const;
    int StepCount() const { return int(m_steps.size()); }
    // The dialog while the box shows in a program with widgets, else null.
    QProgressDialog* Dialog() const { return m_dialog.get(); }

private:
    void Tell(Event event);
    void UpdateDialog();

    Observer m_observer;
    bool m_english;
    std::vector<CHostProgressStep> m_steps;
    size_t m_current = 0;
    int m_position = 0;
    int m_mode = 0;
    bool m_visible = false;
    std::atomic<bool> m_cancelled{false};
    std::unique_ptr<QProgressDialog> m_dialog;
};

} // namespace zorhost
