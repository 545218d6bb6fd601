#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/Bytes.hpp"

namespace TalFuzz {

/// A folder of numbered files: what a fuzzer of that name begins with.
class Seeds {
public:
    explicit Seeds(std::filesystem::path folder) : folder_(std::move(folder)) {
        std::filesystem::create_directories(folder_);
    }

    void write(TalTest::Bytes const& seed) {
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

/// For fuzz-lanes.
void writeLaneSeeds(Seeds seeds);

/// For fuzz-capture and fuzz-decode: small captures of every variant, under filters.
void writeCaptureSeeds(Seeds seeds);

/// For fuzz-capture-file: small captures of both formats.
void writeCaptureFileSeeds(Seeds seeds);

/// For fuzz-events: short streams of states, with restarts, late messages and the like.
void writeEventSeeds(Seeds seeds);

/// For fuzz-frame and fuzz-inspect: a frame of every kind, under filters.
void writeFrameSeeds(Seeds seeds);

/// For fuzz-elements and fuzz-values: elements and values.
void writeCodecSeeds(Seeds seeds);

/// For fuzz-positions: PDUs and sequences of ASDU, where they stand in a file.
void writePositionSeeds(Seeds seeds);

/// For fuzz-redundancy: frames over both ways of HSR or PRP, and what can be wrong with copies.
void writeRedundancySeeds(Seeds seeds);

/// For fuzz-samples: short streams of samples, with losses, late samples and the like.
void writeSampleSeeds(Seeds seeds);

/// For fuzz-queries: lists of packets, and windows.
void writeQuerySeeds(Seeds seeds);

/// For fuzz-scl: descriptions of every construction.
void writeSclSeeds(Seeds seeds);

/// For fuzz-supervision: short traffic with a fault.
void writeSupervisionSeeds(Seeds seeds);

}  // namespace TalFuzz
