#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/Publisher.hpp"
#include "support/Ethernet.hpp"

namespace TalBench {

/// What a sender of GOOSE publishes: 16 data set entries, eight booleans and their qualities.
struct GooseSettings {
    TalTest::Ethernet ethernet = {};
    std::uint16_t appId = 0x0001;
    /// The name of the IED, which gocbRef, datSet and goID begin with.
    std::string device = {};
    /// After so many frames a value changes: stNum counts, sqNum begins again.
    std::uint64_t framesPerState = 1000;
    /// Of the first frame, less than framesPerState.
    std::uint64_t firstSqNum = 0;
};

/// A sender of GOOSE. sqNum takes the octets it needs, so that frames come in two lengths.
class GoosePublisher : public Publisher {
public:
    explicit GoosePublisher(GooseSettings const& settings);

    [[nodiscard]] TalTest::Bytes const& send() override;

private:
    void buildFrame();
    [[nodiscard]] TalTest::Bytes build(std::uint64_t sqNum) const;

    GooseSettings settings_;
    TalTest::Bytes frame_ = {};
    std::uint64_t stNum_ = 1;
    std::uint64_t sqNum_;
    /// In the frame as it is now.
    std::size_t sqNumPosition_ = 0;
    std::size_t sqNumWidth_ = 0;
};

}  // namespace TalBench
