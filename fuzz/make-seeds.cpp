// Writes inputs for the fuzzers to begin with: DIR/NAME/* for the fuzzer NAME.

#include <exception>
#include <filesystem>
#include <iostream>

#include "fuzz/Seeds.hpp"

int main(int argc, char** argv) try {
    using TalFuzz::Seeds;
    if (argc != 2) {
        std::cerr << "usage: make-seeds DIR\n";
        return 2;
    }
    std::filesystem::path const folder = argv[1];
    TalFuzz::writeCaptureSeeds(Seeds(folder / "fuzz-capture"));
    TalFuzz::writeCaptureFileSeeds(Seeds(folder / "fuzz-capture-file"));
    TalFuzz::writeCaptureSeeds(Seeds(folder / "fuzz-decode"));
    TalFuzz::writeCodecSeeds(Seeds(folder / "fuzz-elements"));
    TalFuzz::writeEventSeeds(Seeds(folder / "fuzz-events"));
    TalFuzz::writeFrameSeeds(Seeds(folder / "fuzz-frame"));
    TalFuzz::writeFrameSeeds(Seeds(folder / "fuzz-inspect"));
    TalFuzz::writeLaneSeeds(Seeds(folder / "fuzz-lanes"));
    TalFuzz::writePositionSeeds(Seeds(folder / "fuzz-positions"));
    TalFuzz::writeQuerySeeds(Seeds(folder / "fuzz-queries"));
    TalFuzz::writeRedundancySeeds(Seeds(folder / "fuzz-redundancy"));
    TalFuzz::writeSupervisionSeeds(Seeds(folder / "fuzz-supervision"));
    TalFuzz::writeSampleSeeds(Seeds(folder / "fuzz-samples"));
    TalFuzz::writeSclSeeds(Seeds(folder / "fuzz-scl"));
    TalFuzz::writeCaptureSeeds(Seeds(folder / "fuzz-traffic"));
    TalFuzz::writeCodecSeeds(Seeds(folder / "fuzz-values"));
    return 0;
} catch (std::exception const& error) {
    std::cerr << "make-seeds: " << error.what() << '\n';
    return 1;
}
