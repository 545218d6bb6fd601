#pragma once

// A second index of GOOSE and Sampled Values traffic, written as plainly as possible: whole
// records are copied, every BER value is copied, streams are searched from the first to the last.
// The library's store must hold the same. Shares no code with the library, only its data types.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/GooseIdentifer.hpp>
#include <TalIec61850Parser/store/SvIdentifer.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "index/IndexImage.hpp"
#include "support/Bytes.hpp"

namespace TalTest {

/// One record of a capture: its frame, where the frame starts in the file, and its time.
struct PlainFrame {
    Bytes octets;
    std::uint64_t fileOffset = 0;
    std::uint32_t seconds = 0;
    std::uint32_t nanoseconds = 0;
};

/// The records of a classic capture; none when it is something else. What the end of the file
/// cuts off the last record is zeros, at most 16 MiB of them.
std::vector<PlainFrame> plainFrames(Bytes const& capture);

struct PlainGoose {
    TalIec61850::GooseIdentifer id;
    std::uint32_t packetCount = 0;
    std::vector<FileImage> files;
};

struct PlainSv {
    TalIec61850::SvIdentifer id;
    std::uint16_t smpCnt = 0;
    std::uint16_t smpRate = 0;
    std::uint32_t noASDU = 0;
    std::uint32_t packetCount = 0;
    std::vector<FileImage> files;
};

class PlainIndex {
public:
    /// Adds what the filter admits of a capture held in memory.
    void add(std::string const& fileName, Bytes const& capture,
             TalIec61850Parser::Filter const& filter);

    /// The same, read from the file of that name.
    void addFile(std::string const& fileName, TalIec61850Parser::Filter const& filter);

    [[nodiscard]] IndexImage image() const;

private:
    void addFrame(std::string const& fileName, PlainFrame const& frame,
                  TalIec61850Parser::Filter const& filter);

    std::vector<PlainGoose> gooses_;
    std::vector<PlainSv> svs_;
};

/// A file's octets; none when it cannot be read.
Bytes fileOctets(std::string const& path);

}  // namespace TalTest
