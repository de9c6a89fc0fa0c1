// Fills a description's text pool: each distinct text once, behind its length.
#pragma once

#include "zorhost/device/DeviceDescription.h"

#include <string>
#include <string_view>
#include <vector>

namespace zorhost::device {

class TextPoolBuilder {
public:
    // expected: about how many distinct texts will come; sizes the table, limits nothing.
    TextPoolBuilder(std::string& pool, std::size_t expected);

    // The text's place in the pool, shared with every equal text added before.
    TextRef Intern(std::string_view text);

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t offset = 0; // 0: free
    };
    std::string& pool_;
    std::vector<Slot> slots_; // open addressing; a power of two, at most half full
    std::size_t used_ = 0;

    void Grow();
};

} // namespace zorhost::device
