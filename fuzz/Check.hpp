#pragma once

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace TalFuzz {

/// Ends the program unless something holds, so that the input is kept.
inline void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

/// Ends the program when two things differ that should not.
/// @param difference  in words; empty for none
inline void requireNone(std::string const& difference) {
    require(difference.empty(), difference.c_str());
}

/// Keeps what is no capture from being said so a million times.
inline void muteErrors() { std::cerr.setstate(std::ios_base::failbit); }

}  // namespace TalFuzz
