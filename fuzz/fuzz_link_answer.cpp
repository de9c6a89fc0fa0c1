// The link's reading of what a drive answers, where our code gives bytes a meaning: the
// refusal registers and their message, the electronic label and version registers, and
// the word order of a read block.
#include "FuzzSupport.h"

#include "zorhost/device/DeviceLoader.h"
#include "zorhost/link/RegisterMap.h"

#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zorhost::link;
    std::vector<std::uint16_t> words((size + 1) / 2);
    for (std::size_t i = 0; i < size; ++i)
        words[i / 2] = std::uint16_t(words[i / 2] | data[i] << (i % 2 ? 0 : 8));

    if (words.size() >= kRefusalRegisters) {
        const zorhost::sim::LinkResult refusal = DecodeRefusal(
            std::span<const std::uint16_t, kRefusalRegisters>(words.data(), kRefusalRegisters));
        zorhost::sim::LinkResultText(refusal, true);
        zorhost::sim::LinkResultText(refusal, false);
        ResultFor(Exception(words[0] & 0xff));
    }

    const std::vector<std::uint8_t> label = UnpackBytes(words);
    const auto servo = fuzz::ShippedDevice("zd3s_servo.json");
    const auto& own = servo->product.electronicLabel;
    zorhost::device::IsSameDeviceType(label.data(), label.size(), own.data(), own.size());

    // The shipped products all send the low word first; the same servo sending the high
    // word first makes the swap do something.
    static const auto highFirst = [&] {
        auto copy = std::make_shared<zorhost::device::DeviceDescription>(*servo);
        copy->product.wordOrder = zorhost::device::WordOrder::HighFirst;
        return copy;
    }();
    // A block read at an address given by the first word; swapping twice gives it back.
    if (!words.empty()) {
        const std::uint32_t address = words[0];
        std::vector<std::uint16_t> block(words.begin() + 1, words.end());
        const std::vector<std::uint16_t> before = block;
        SwapToWireOrder(*highFirst, address, block);
        SwapToWireOrder(*highFirst, address, block);
        if (block != before)
            __builtin_trap();
    }
    return 0;
}
