// The module's two fixed credentials: the factory access code and the administrator word.
// Both are chosen by the deployment at build time. Neither is held as text: the code is
// a number that is turned into its digits when needed, and the word is held only as a
// salted SHA-256 of its lower-case form.
#pragma once

#include <afx/CString.h>
#include <afx/afxtypes.h>

// The factory access code as the number written to a drive.
int GetFactoryAccessCode();
// The factory access code as the four digits a user types.
CString GetFactoryAccessCodeText();
// The password test: nonzero when `password` is the factory access code or the
// administrator word, compared without regard to case. An empty text never passes.
BOOL IsAccessPasswordValid(const CString& password);
