// Test seams: answers for message boxes, file dialogs and popup menus without showing
// anything; a driver that acts inside a modal dialog; an event pump with a time-out.
#pragma once

#include <afx/afxwin.h>

#include <deque>
#include <functional>
#include <vector>

struct AfxPrompt {
    enum Kind { MessageBox, FileDialog, PopupMenu };
    Kind kind = MessageBox;
    CString text;    // message text; for a file dialog its initial file name
    CString caption; // caption; for a file dialog its title
    UINT type = 0;   // MB_ flags of a message box, OFN_ flags of a file dialog
    UINT Icon() const { return type & MB_ICONMASK; }
    UINT Buttons() const { return type & MB_TYPEMASK; }
    // File dialogs:
    BOOL open = FALSE;
    CString filter;
    CString defExt;
    // Popup menus: the entries as shown ("id:text", disabled ones with a leading '-').
    CStringArray menuItems;
};

// Decides what a prompt answers. Implementations record what they were shown.
class IAfxPromptResponder {
public:
    virtual ~IAfxPromptResponder() = default;
    // Returns IDOK, IDYES, ...
    virtual int OnMessageBox(const AfxPrompt& prompt) = 0;
    // Fills `paths` and returns TRUE to choose them, FALSE to cancel.
    virtual BOOL OnFileDialog(const AfxPrompt& prompt, std::vector<CString>& paths) = 0;
    // Returns the chosen command id, 0 for none.
    virtual UINT OnPopupMenu(const AfxPrompt& prompt) = 0;
};

// Installs `responder` for the whole process (nullptr: show real prompts); returns the
// previous one. Without a responder on the offscreen platform, message boxes answer
// their default button and file dialogs and menus cancel, with a note on stderr.
IAfxPromptResponder* AfxSetPromptResponder(IAfxPromptResponder* responder);
IAfxPromptResponder* AfxGetPromptResponder();

// A responder with queued answers and a record of every prompt. When a queue is empty a
// message box answers its default button, a file dialog and a menu cancel.
class CAfxRecordingResponder : public IAfxPromptResponder {
public:
    CAfxRecordingResponder();           // installs itself
    ~CAfxRecordingResponder() override; // puts the previous responder back
    void AnswerMessageBox(int result) { m_boxAnswers.push_back(result); }
    void ChooseFiles(std::vector<CString> paths) { m_fileAnswers.push_back(std::move(paths)); }
    void CancelFileDialog() { m_fileAnswers.push_back({}); }
    void ChooseMenuCommand(UINT id) { m_menuAnswers.push_back(id); }

    std::vector<AfxPrompt> prompts;
    size_t Count(AfxPrompt::Kind kind) const;
    const AfxPrompt* Last(AfxPrompt::Kind kind) const;

    int OnMessageBox(const AfxPrompt& prompt) override;
    BOOL OnFileDialog(const AfxPrompt& prompt, std::vector<CString>& paths) override;
    UINT OnPopupMenu(const AfxPrompt& prompt) override;

private:
    IAfxPromptResponder* m_previous;
    std::deque<int> m_boxAnswers;
    std::deque<std::vector<CString>> m_fileAnswers;
    std::deque<UINT> m_menuAnswers;
};

// The default answer of a message box of type nType (its default button).
int AfxDefaultMessageBoxResult(UINT nType);

// While alive, every CDialog::DoModal calls `driver` after OnInitDialog, inside the modal
// run; it may act on the dialog and call EndDialog. Scopes nest; the innermost acts.
class CAfxModalDriver {
public:
    explicit CAfxModalDriver(std::function<void(CDialog&)> driver);
    ~CAfxModalDriver();
    CAfxModalDriver(const CAfxModalDriver&) = delete;
    CAfxModalDriver& operator=(const CAfxModalDriver&) = delete;
    int runs = 0; // how many dialogs it was called for

private:
    std::function<void(CDialog&)> m_driver;
    CAfxModalDriver* m_outer;
    friend void AfxRunModalDriver(CDialog& dlg);
    BOOL AfxHasModalDriver();
};
void AfxRunModalDriver(CDialog& dlg);
BOOL AfxHasModalDriver();

// Runs the event loop until pred() holds (TRUE) or timeout_ms passes (FALSE).
BOOL AfxPumpMessagesUntil(const std::function<bool()>& pred, int timeout_ms);

// Simulated typing into an edit or combo box: replaces its text and notifies the parent
// as a user's typing does (EN_CHANGE / CBN_EDITCHANGE).
void AfxTestTypeText(CWnd* pCtrl, const char* text);
// Simulated key press on the window: goes through PreTranslateMessage, handlers and
// the default action like a real one.
void AfxTestPressKey(CWnd* pWnd, UINT vk, wchar_t ch = 0);
// Draws the window into a PNG file; FALSE on failure.
BOOL AfxTestGrabWindow(CWnd* pWnd, const char* pngPath);

// The write call of AfxReplaceFile, to make a disk fill up or fail on cue; nullptr puts
// the system's write back. Returns the previous function.
using AfxWriteFunction = long (*)(int fd, const void* data, unsigned long size);
AfxWriteFunction AfxSetFileWriteFunction(AfxWriteFunction write);
