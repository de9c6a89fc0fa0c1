// Helpers shared by the text suites: what counts as a Chinese text, and the printf
// conversions a translation has to keep.
#pragma once

#include <string>
#include <vector>

// True when `text` (UTF-8) holds a CJK ideograph or full-width punctuation.
bool HasChineseText(const std::string& text);

// The printf conversions of `format` in order ("%s", "%02hu", "%d" ...), "%%" left out.
std::vector<std::string> PrintfConversions(const std::string& format);
