// Faults of a JSON text that a JSON parser doesn't report, or reports as something else:
// a key given twice in one object (the parser keeps the last one without a word), and a
// comma with no value before it (the parser calls it an unterminated object).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zorhost::device {

struct JsonShapeFault {
    std::size_t offset = 0; // of the second key, or of the stray comma
    std::string message;
};

// The first key that an object of `json` holds twice. Meant for a text that parsed.
bool FindDuplicateKey(std::string_view json, JsonShapeFault& fault);
// The first comma up to `limit` that follows another comma or opens an object or array,
// or stands right before its closing bracket.
bool FindStrayComma(std::string_view json, std::size_t limit, JsonShapeFault& fault);

} // namespace zorhost::device
