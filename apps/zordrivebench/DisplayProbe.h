// Whether the X server named by $DISPLAY answers. Qt aborts the process when the xcb platform
// can't connect; asking first lets the program fall back to rendering off screen.
#pragma once

namespace zordrivebench {

// True when an X connection to $DISPLAY can be made (or the X client library is missing, so
// that Qt's own message decides).
bool XServerAnswers();

} // namespace zordrivebench
