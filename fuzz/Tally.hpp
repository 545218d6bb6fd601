#pragma once

#include <cstdint>
#include <iostream>
#include <string>
#include <utility>

namespace TalFuzz {

/// Counts inputs of which something holds, and says at the program's end how many: when far below
/// half are, the others are not worth much.
class Tally {
public:
    explicit Tally(std::string what) : what_(std::move(what)) {}
    Tally(Tally const&) = delete;
    Tally& operator=(Tally const&) = delete;
    ~Tally() {
        std::cout << count_ << " of " << all_ << " " << what_ << " ("
                  << 100 * count_ / (all_ == 0 ? 1 : all_) << " %)\n";
    }

    void add(std::uint64_t count, std::uint64_t all) {
        count_ += count;
        all_ += all;
    }

private:
    std::string what_;
    std::uint64_t count_ = 0;
    std::uint64_t all_ = 0;
};

}  // namespace TalFuzz
