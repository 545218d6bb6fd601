// Writes inputs for the fuzzers to begin with: DIR/NAME/* for the fuzzer NAME.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/LaneScript.hpp"
#include "lanes/LaneFrames.hpp"
#include "lanes/StoreActions.hpp"
#include "support/Bytes.hpp"

namespace {

using namespace TalFuzz;
using namespace TalTest;

/// A folder of numbered files.
class Seeds {
public:
    explicit Seeds(std::filesystem::path folder) : folder_(std::move(folder)) {
        std::filesystem::create_directories(folder_);
    }

    void write(Bytes const& seed) {
        std::ofstream file(folder_ / std::to_string(count_++), std::ios_base::binary);
        file.write(reinterpret_cast<char const*>(seed.data()),
                   static_cast<std::streamsize>(seed.size()));
        file.close();
        if (!file) throw std::runtime_error("cannot write to " + folder_.string());
    }

private:
    std::filesystem::path folder_;
    std::size_t count_ = 0;
};

/// Steps that repeat the frames, change them in a few places, and pass progress calls.
Bytes someSteps(std::size_t number) {
    auto const place = static_cast<std::uint8_t>(14 + 7 * number % 80);
    return {laneStep(kAddRound, 3),
            laneStep(kAdd, 0),
            laneStep(kAddChanged, 1),
            0,
            place,
            1,
            laneStep(kAddCounted, 0),
            0,
            60,
            laneStep(kAddTail, 0),
            4,
            2,
            laneStep(kPassToProgress, 0),
            laneStep(kAddRound, 2),
            laneStep(kChange, 0),
            0,
            place,
            0x80,
            laneStep(kAddRound, 1),
            laneStep(kAddResized, 1),
            0,
            120,
            0xFF,
            laneStep(kAddRound, 1)};
}

/// Each frame alone, and each with two others; every filter and every action now and then.
void writeLaneSeeds(Seeds seeds) {
    auto const frames = allFrames();
    std::size_t const actions = storeActions().size() + 2;
    std::size_t const filters = laneFilters().size();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        Bytes const& frame = frames[i].octets;
        auto const action = static_cast<std::uint8_t>(i % actions);
        auto const filter = static_cast<std::uint8_t>(i % 3 == 0 ? i / 3 % filters : 0);
        auto const variant = static_cast<std::uint8_t>(i % 4);
        seeds.write(concat({laneInput(variant, 0, filter, {frame}), someSteps(i)}));
        std::vector<Bytes> const several = {frame, frames[i % 11].octets,
                                            frames[i * 7 % frames.size()].octets};
        seeds.write(concat({laneInput(variant, action, filter, several), someSteps(i)}));
    }
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: make-seeds DIR\n";
        return 2;
    }
    std::filesystem::path const folder = argv[1];
    writeLaneSeeds(Seeds(folder / "fuzz-lanes"));
    return 0;
} catch (std::exception const& error) {
    std::cerr << "make-seeds: " << error.what() << '\n';
    return 1;
}
