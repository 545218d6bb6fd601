// Seeds that are streams of samples.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/Seeds.hpp"
#include "support/WaveformStream.hpp"

namespace TalFuzz {

using namespace TalTest;

void writeSampleSeeds(Seeds seeds) {
    using enum WaveMember;
    std::vector<std::vector<WaveMember>> const layouts = {repeatedMembers({int32, quality}, 2),
                                                          repeatedMembers({float32, quality}, 1),
                                                          repeatedMembers({float32}, 3),
                                                          {int32, timestamp},
                                                          {int16, boolean}};
    std::vector<std::uint32_t> const rates = {4000, 4800, 12800};
    for (std::size_t i = 0; i < 30; ++i) {
        WaveformSettings settings;
        settings.rate = rates[i % rates.size()];
        settings.asdus = i % 3 == 2 ? 4 : 1;
        settings.members = layouts[i % layouts.size()];
        settings.firstCount = settings.rate - 8;
        settings.hasRefrTm = i % 7 == 3;
        settings.isPcapng = i % 4 == 1;
        if (i % 5 == 4) settings.copies = WaveCopies::prp;
        if (i % 2 == 0) {
            settings.smpRate = static_cast<std::uint16_t>(settings.rate);
            settings.smpMod = 1;
        }
        WaveformStream stream(settings);
        stream.send(4).lose(i % 3).send(2).sendLate(1);
        if (settings.copies == WaveCopies::none) stream.repeatLast();
        if (i % 4 == 0) stream.restartAt(2000).send(3);
        if (i % 6 == 1) stream.stepClock(-400'000'000).send(3);
        if (i % 6 == 2) stream.synchronize(0).send(3);
        if (i % 6 == 3) stream.revise(2).send(2);
        stream.send(2);
        seeds.write(concat({Bytes(kFilterChoiceSize), stream.captures().front()}));
    }
}

}  // namespace TalFuzz
