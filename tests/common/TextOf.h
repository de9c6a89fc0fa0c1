// The text a getter of the host contract hands back through its CString argument, as a
// value a test can compare in place.
#pragma once

#include <afx/CString.h>

template <class T, class I> CString TextOf(T* object, void (I::*get)(CString&)) {
    CString text;
    (object->*get)(text);
    return text;
}
