// Seeds that are frames over both ways of HSR or PRP.

#include <cstdint>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/Seeds.hpp"
#include "support/CaptureFile.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalFuzz {

using namespace TalTest;

void writeRedundancySeeds(Seeds seeds) {
    constexpr std::uint32_t kStep = 1'000'000;
    for (std::uint16_t seed = 0; seed < 32; ++seed) {
        bool const isHsr = seed % 2 == 1;
        bool const isGoose = seed % 4 > 1;
        CaptureBuilder capture(seed % 8 < 4 ? CaptureVariant::nanoLittle
                                            : CaptureVariant::microBig);
        for (std::uint16_t number = 0; number < 12; ++number) {
            for (char const way : {'A', 'B'}) {
                // Copies are lost, of the other way, of other octets, with a trailer that is not
                // one.
                bool const isSpecial = way == 'B' && number == seed % 12;
                if (isSpecial && seed % 5 == 0) {
                    continue;
                }
                char const told = isSpecial && seed % 5 == 1 ? 'A' : way;
                auto const sequence = static_cast<std::uint16_t>(65530 + number);
                Ethernet const link = isGoose ? Ethernet() : svEthernet();
                Ethernet const tagged =
                    isHsr ? link.withHsr(told, sequence) : link.withPrp(told, sequence);
                GooseMessage goose;
                goose.sqNum = number;
                SvMessage sv = message92le("MU01", number);
                sv.asdus.front().seqData = Bytes(8, isSpecial && seed % 5 == 2 ? 1 : 0);
                Bytes frame = isGoose ? gooseFrame(tagged, goose) : svFrame(tagged, sv);
                if (isSpecial && seed % 5 == 3) {
                    frame[frame.size() - 3] ^= 0x0FU;
                }
                capture.add(number / 4, number % 4 * kStep + (way == 'B' ? 7000 : 0), frame);
                if (isSpecial && seed % 5 == 4) {
                    capture.add(number / 4, number % 4 * kStep + 9000, frame);
                }
            }
        }
        seeds.write(concat({Bytes(kFilterChoiceSize), capture.bytes()}));
    }
}

}  // namespace TalFuzz
