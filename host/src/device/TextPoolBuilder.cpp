#include "TextPoolBuilder.h"

#include <functional>

namespace zorhost::device {

namespace {

std::uint32_t HashOf(std::string_view s) {
    return std::uint32_t(std::hash<std::string_view>()(s));
}

std::size_t SlotsFor(std::size_t expected) {
    std::size_t n = 1024;
    while (n < 2 * expected)
        n *= 2;
    return n;
}

} // namespace

TextPoolBuilder::TextPoolBuilder(std::string& pool, std::size_t expected)
    : pool_(pool), slots_(SlotsFor(expected)) {
    if (pool_.empty())
        pool_.push_back('\0'); // offset 0: the empty text
}

TextRef TextPoolBuilder::Intern(std::string_view text) {
    if (text.empty())
        return {};
    const std::uint32_t hash = HashOf(text);
    std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.offset == 0)
            break;
        if (slot.hash == hash) {
            const TextRef ref{slot.offset};
            if (DeviceDescription::TextAt(pool_, ref) == text)
                return ref;
        }
    }
    const auto offset = std::uint32_t(pool_.size());
    for (std::size_t n = text.size();; n >>= 7) {
        if (n < 0x80) {
            pool_.push_back(char(n));
            break;
        }
        pool_.push_back(char(0x80 | (n & 0x7F)));
    }
    pool_.append(text);
    if (2 * (used_ + 1) > slots_.size()) {
        Grow();
        mask = slots_.size() - 1;
    }
    std::size_t i = hash & mask;
    while (slots_[i].offset != 0)
        i = (i + 1) & mask;
    slots_[i] = {hash, offset};
    ++used_;
    return TextRef{offset};
}

void TextPoolBuilder::Grow() {
    std::vector<Slot> old(slots_.size() * 2);
    old.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& s : old) {
        if (s.offset == 0)
            continue;
        std::size_t i = s.hash & mask;
        while (slots_[i].offset != 0)
            i = (i + 1) & mask;
        slots_[i] = s;
    }
}

} // namespace zorhost::device
