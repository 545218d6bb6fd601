// The decoders of single packets at arbitrary positions of arbitrary files, inside and beyond.

#include <cstddef>
#include <cstdint>

#include "fuzz/DecodedPacket.hpp"
#include "fuzz/FuzzInput.hpp"
#include "fuzz/PositionsInput.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace TalTest;
    static TalFuzz::Tally decoded("positions are decoded to something");
    static ScratchFile file;
    TalFuzz::FuzzInput input({data, size});
    std::uint64_t const position = TalFuzz::positionFrom(input);
    Bytes const octets = input.octets(size);
    file.assign(octets);
    bool const isGoose = TalFuzz::isGooseDecodedRightly(file.path(), octets, position);
    bool const isSv = TalFuzz::isSvDecodedRightly(file.path(), octets, position);
    decoded.add(isGoose || isSv ? 1 : 0, 1);
    return 0;
}
