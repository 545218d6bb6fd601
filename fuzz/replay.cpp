// Gives a fuzzer inputs from files, one after the other, where there is no libFuzzer: those that
// once failed, and those that fuzzing begins with.
//   replay FOLDER...

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argc, char** argv) try {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::exists(argv[i])) continue;
        for (auto const& entry : std::filesystem::directory_iterator(argv[i])) {
            std::string const path = entry.path().string();
            std::cerr << path << '\n';
            TalTest::Bytes const input = TalTest::readFile(path);
            LLVMFuzzerTestOneInput(input.data(), input.size());
            ++count;
        }
    }
    std::cerr << count << " inputs\n";
    return count == 0 ? 1 : 0;
} catch (std::exception const& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
