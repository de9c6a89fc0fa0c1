// The masked edit family behind the list's cell editors: a numeric edit that keeps only
// what forms a number of the allowed shape, and an alphanumeric edit that refuses a set
// of characters. Both filter what the user types; text set by code is taken as it is.
#pragma once

#include <afx/afxwin.h>

class CAMSEdit : public CEdit {
public:
    CAMSEdit() = default;

protected:
    // Replaces the selection by `ch` in `text`, as a typed character would.
    CString TextAfterChar(UINT ch) const;
};

class CAMSNumericEdit : public CAMSEdit {
public:
    CAMSNumericEdit();

    void SetMaxWholeDigits(int digits) { m_maxWholeDigits = digits; }
    int GetMaxWholeDigits() const { return m_maxWholeDigits; }
    void SetMaxDecimalPlaces(int places) { m_maxDecimalPlaces = places; }
    int GetMaxDecimalPlaces() const { return m_maxDecimalPlaces; }
    void AllowNegative(BOOL allow = TRUE) { m_allowNegative = allow; }
    BOOL IsNegativeAllowed() const { return m_allowNegative; }

    // What stays of `text` under the rules: one walk from the front. A minus counts only
    // as the first character; whole digits beyond the limit are dropped; the first point
    // is kept (and ends the text when no decimals are allowed); decimals beyond the limit
    // end the text; anything else is dropped.
    static CString ValidText(const CString& text, int wholeDigits, int decimalPlaces,
                             BOOL allowNegative);
    CString GetValidText(const CString& text) const {
        return ValidText(text, m_maxWholeDigits, m_maxDecimalPlaces, m_allowNegative);
    }

protected:
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) override;

private:
    int m_maxWholeDigits = 9;
    int m_maxDecimalPlaces = 4;
    BOOL m_allowNegative = FALSE;
};

class CAMSAlphanumericEdit : public CAMSEdit {
public:
    CAMSAlphanumericEdit();

    void SetInvalidCharacters(const char* chars) { m_invalid = chars; }
    const CString& GetInvalidCharacters() const { return m_invalid; }
    // 0: no limit.
    void SetMaxCharacters(int count) { m_maxChars = count; }
    BOOL IsCharacterValid(UINT ch) const;

protected:
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) override;

private:
    CString m_invalid;
    int m_maxChars = 0;
};
