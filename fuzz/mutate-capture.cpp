// How inputs of whole captures are changed; libFuzzer finds these functions by their names.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/CaptureMutator.hpp"

namespace {

using TalTest::Bytes;

std::size_t handBack(Bytes const& choice, Bytes const& capture, std::uint8_t* data,
                     std::size_t maxSize) {
    Bytes const whole = TalTest::prefix(TalTest::concat({choice, capture}), maxSize);
    std::copy(whole.begin(), whole.end(), data);
    return whole.size();
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    TalFuzz::Random random(seed);
    random.discard(1);
    auto [choice, capture] = TalFuzz::captureInput({data, size});
    if (random() % 10 == 0) {
        choice[random() % choice.size()] ^= static_cast<std::uint8_t>(1U << random() % 8);
    } else {
        capture = TalFuzz::mutatedCapture(capture, random);
    }
    return handBack(choice, capture, data, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(std::uint8_t const* dataA, std::size_t sizeA,
                                                 std::uint8_t const* dataB, std::size_t sizeB,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned seed) {
    TalFuzz::Random random(seed);
    auto const a = TalFuzz::captureInput({dataA, sizeA});
    auto const b = TalFuzz::captureInput({dataB, sizeB});
    return handBack(a.filterChoice, TalFuzz::crossedCaptures(a.capture, b.capture, random), out,
                    maxSize);
}
