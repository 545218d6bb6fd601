// How inputs of single frames are changed; libFuzzer finds this function by its name.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/FrameMutator.hpp"
#include "fuzz/FuzzInput.hpp"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    using namespace TalFuzz;
    using TalTest::Bytes;
    Random random(seed);
    random.discard(1);
    FuzzInput input({data, size});
    Bytes choice = input.octets(kFilterChoiceSize);
    choice.resize(kFilterChoiceSize);
    Bytes frame = input.octets(size);
    if (random() % 8 == 0) {
        choice[random() % choice.size()] ^= static_cast<std::uint8_t>(1U << random() % 8);
    } else {
        frame = mutatedFrame(std::move(frame), random);
    }
    Bytes const changed = TalTest::prefix(TalTest::concat({choice, frame}), maxSize);
    std::copy(changed.begin(), changed.end(), data);
    return changed.size();
}
