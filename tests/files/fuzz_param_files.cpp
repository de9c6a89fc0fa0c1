// Fuzz target of the two parameter file readers (.zorparam and the parameter table). The
// first byte picks the reader. Built as it is, main() replays a corpus folder and, for each
// file, every cut and a spread of flipped bytes, so ctest runs the corpus under the
// sanitizers of the build; linked with -fsanitize=fuzzer (clang, PARMIRA_LIBFUZZER) it is a
// libFuzzer target.
#include "zorhost/files/ParamFile.h"
#include "zorhost/files/ParamFileCodec.h"
#include "zorhost/files/ParamTableReader.h"

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    // Mode 2 makes length and checksum agree with the bytes, so that mutations get past
    // them into the contents.
    if (data[0] == 2 && bytes.size() >= zorhost::files::kZorparamHeaderBytes) {
        const char* payload = bytes.data() + zorhost::files::kZorparamHeaderBytes;
        const auto length = std::uint32_t(bytes.size() - zorhost::files::kZorparamHeaderBytes);
        const auto crc = std::uint32_t(crc32(0L, reinterpret_cast<const Bytef*>(payload), length));
        std::memcpy(&bytes[12], &length, 4);
        std::memcpy(&bytes[16], &crc, 4);
    }
    zorhost::files::CParamFile file;
    std::string error;
    if (data[0] & 1) {
        zorhost::files::ReadParamTableText(bytes, file, nullptr, &error);
    } else if (file.FromBytes(bytes, &error)) {
        // What was read must save again.
        file.ToBytes();
    }
    return 0;
}

#ifndef PARMIRA_LIBFUZZER
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS_DIR\n", argv[0]);
        return 2;
    }
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream all;
        all << in.rdbuf();
        std::string input = all.str();
        auto run = [](const std::string& s) {
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(s.data()), s.size());
        };
        if (!input.empty() && input[0] == 0) {
            input[0] = 2;
            for (std::size_t cut = 0; cut < input.size(); ++cut)
                run(input.substr(0, cut));
            for (std::size_t at = 1; at < input.size(); ++at)
                for (const unsigned char flip : {0x01, 0x80, 0xFF}) {
                    std::string broken = input;
                    broken[at] = char(broken[at] ^ flip);
                    run(broken);
                }
            input[0] = 0;
        }
        run(input);
        for (std::size_t cut = 0; cut < input.size(); ++cut)
            run(input.substr(0, cut));
        for (std::size_t at = 1; at < input.size(); at += 1 + input.size() / 97)
            for (const unsigned char flip : {0x01, 0x80, 0xFF}) {
                std::string broken = input;
                broken[at] = char(broken[at] ^ flip);
                run(broken);
            }
        ++files;
    }
    std::printf("replayed %d corpus files\n", files);
    return files > 0 ? 0 : 1;
}
#endif
