#pragma once

// Checks over a whole description, made once every entry has been read and indexed.

#include "zorhost/device/DeviceLoader.h"

namespace zorhost::device {

// A parameter wider than one register must leave its further registers free: a 32-bit
// value whose second word is another parameter's address would corrupt both. Returns an
// error naming the wide parameter, or one with an empty message when all is well.
LoadError CheckRegisterOverlaps(const DeviceDescription& device);

} // namespace zorhost::device
