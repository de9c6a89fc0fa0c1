#include "controls/AMSEdit.h"

CString CAMSEdit::TextAfterChar(UINT ch) const {
    CString text;
    GetWindowText(text);
    int start = 0;
    int end = 0;
    GetSel(start, end);
    if (start > end)
        std::swap(start, end);
    const int len = text.GetLength();
    start = start < 0 ? 0 : (start > len ? len : start);
    end = end < start ? start : (end > len ? len : end);
    return text.Left(start) + CString(wchar_t(ch)) + text.Mid(end);
}

// ---------------------------------------------------------------- numeric
CAMSNumericEdit::CAMSNumericEdit() = default;

CString CAMSNumericEdit::ValidText(const CString& text, int wholeDigits, int decimalPlaces,
                                   BOOL allowNegative) {
    CString result;
    int whole = 0;
    int decimals = 0;
    bool point = false;
    const int len = text.GetLength();
    for (int i = 0; i < len; ++i) {
        const wchar_t c = text.GetAt(i);
        if (c == L'-') {
            if (i == 0 && allowNegative)
                result += c;
            continue;
        }
        if (c == L'.') {
            if (point)
                continue;
            point = true;
            result += c;
            // Without places the point ends the figure: "12.5" stays "12.", never 125.
            if (decimalPlaces <= 0)
                break;
            continue;
        }
        if (c >= L'0' && c <= L'9') {
            if (!point) {
                if (whole < wholeDigits) {
                    result += c;
                    ++whole;
                }
                continue;
            }
            if (decimals >= decimalPlaces)
                break;
            result += c;
            ++decimals;
        }
    }
    return result;
}

void CAMSNumericEdit::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
    // Control characters (backspace, cut, paste) keep their editing role.
    if (nChar < 0x20) {
        CAMSEdit::OnChar(nChar, nRepCnt, nFlags);
        return;
    }
    const CString wanted = TextAfterChar(nChar);
    // A character that the walk would drop or cut off is refused outright, so the caret
    // never jumps.
    if (GetValidText(wanted) == wanted)
        CAMSEdit::OnChar(nChar, nRepCnt, nFlags);
}

// ---------------------------------------------------------------- alphanumeric
CAMSAlphanumericEdit::CAMSAlphanumericEdit() : m_invalid("%'*\"+?><:\\") {}

BOOL CAMSAlphanumericEdit::IsCharacterValid(UINT ch) const {
    return m_invalid.Find(wchar_t(ch)) < 0;
}

void CAMSAlphanumericEdit::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
    if (nChar < 0x20) {
        CAMSEdit::OnChar(nChar, nRepCnt, nFlags);
        return;
    }
    if (!IsCharacterValid(nChar))
        return;
    if (m_maxChars > 0 && TextAfterChar(nChar).GetLength() > m_maxChars)
        return;
    CAMSEdit::OnChar(nChar, nRepCnt, nFlags);
}
