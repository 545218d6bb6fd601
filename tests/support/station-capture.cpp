// Writes the capture of a station: station-capture FILE [FRAMES]

#include <charconv>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>

#include "support/Station.hpp"

namespace {

constexpr std::uint64_t defaultFrames = 300'000;

std::optional<std::uint64_t> parseCount(std::string_view digits) {
    std::uint64_t count = 0;
    char const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, count);
    if (error != std::errc{} || stop != end) {
        return std::nullopt;
    }
    return count;
}

int fail(std::string_view reason, std::string_view subject) {
    std::cerr << "station-capture: " << reason << subject << '\n';
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        return fail("usage: station-capture FILE [FRAMES]", "");
    }
    auto const frames = argc == 3 ? parseCount(argv[2]) : defaultFrames;
    if (!frames) {
        return fail("FRAMES is not a count of frames: ", argv[2]);
    }

    std::ofstream out(argv[1], std::ios::binary);
    if (!out) {
        return fail("cannot write ", argv[1]);
    }
    auto const summary = TalTest::writeStation(out, TalTest::CaptureVariant::nanoLittle, *frames);
    out.close();
    if (!out) {
        return fail("cannot write ", argv[1]);
    }

    using Protocol = TalTest::StationStream::Protocol;
    std::cout << argv[1] << ": " << summary.frames << " frames, "
              << summary.streamCount(Protocol::goose) << " GOOSE and "
              << summary.streamCount(Protocol::sampledValues) << " SV streams, " << summary.size
              << " octets\n";
    return 0;
}
