// The file open/save dialog.
#pragma once

#include <afx/afxwin.h>

constexpr DWORD OFN_READONLY = 0x00000001;
constexpr DWORD OFN_OVERWRITEPROMPT = 0x00000002;
constexpr DWORD OFN_HIDEREADONLY = 0x00000004;
constexpr DWORD OFN_NOCHANGEDIR = 0x00000008;
constexpr DWORD OFN_ALLOWMULTISELECT = 0x00000200;
constexpr DWORD OFN_PATHMUSTEXIST = 0x00000800;
constexpr DWORD OFN_FILEMUSTEXIST = 0x00001000;
constexpr DWORD OFN_EXPLORER = 0x00080000;

struct OPENFILENAME {
    DWORD Flags = 0;
    const char* lpstrInitialDir = nullptr;
    const char* lpstrTitle = nullptr;
    DWORD nFilterIndex = 1;
};

// Filters are written as "Text files (*.txt)|*.txt|All files (*.*)|*.*||"; several
// patterns of one filter are separated by ';'.
class CFileDialog {
public:
    CFileDialog(BOOL bOpenFileDialog, const char* lpszDefExt = nullptr,
                const char* lpszFileName = nullptr,
                DWORD dwFlags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                const char* lpszFilter = nullptr, CWnd* pParentWnd = nullptr);
    virtual ~CFileDialog();

    // IDOK with a chosen path, IDCANCEL otherwise.
    virtual INT_PTR DoModal();

    CString GetPathName() const; // the first chosen path
    POSITION GetStartPosition() const;
    CString GetNextPathName(POSITION& pos) const;

    OPENFILENAME m_ofn;

    BOOL IsOpenDialog() const { return m_bOpen; }
    const CString& GetDefExt() const { return m_defExt; }
    const CString& GetInitialFileName() const { return m_initialName; }
    const CString& GetFilter() const { return m_filter; }

private:
    BOOL m_bOpen;
    CString m_defExt;
    CString m_initialName;
    CString m_filter;
    CWnd* m_pParent;
    CStringArray m_chosen;
};
