// Seeds that are elements, values and times.

#include <cstddef>
#include <cstdint>

#include "fuzz/Seeds.hpp"
#include "support/Ber.hpp"
#include "support/Data.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalFuzz {

using namespace TalTest;

void writeCodecSeeds(Seeds seeds) {
    seeds.write({});
    seeds.write(text("plain text"));
    seeds.write(utcTime(1'700'000'000, 250'000'000));
    seeds.write(bigEndian(0x41D954FC40000000, 8));  // a double of seconds
    seeds.write(bigEndian(1'700'000'000'123'456'789, 8));
    seeds.write({0x01, 0xF4, 30, 59, 23, 15});
    seeds.write(bigEndian(1'700'000'000, 4));
    seeds.write(Bytes(9));
    seeds.write(repeat(0xFF, 9));
    for (LengthForm const form :
         {LengthForm::shortest, LengthForm::oneOctet, LengthForm::twoOctets,
          LengthForm::threeOctets, LengthForm::fourOctets, LengthForm::indefinite})
        seeds.write(concat({ber(0x80, {1, 2, 3}, form), ber(0x82, ber(0x83, {1}), form)}));
    seeds.write(berClaiming(0x83, {0x84, 0xFF, 0xFF, 0xFF, 0xFF}, {1}));
    seeds.write(berClaiming(0x83, {0x85, 0, 0, 0, 0, 1}, {1}));
    seeds.write(goosePdu({}));
    seeds.write(savPdu({}));
    seeds.write(nested(0x82, 20, ber(0x83, {1})));
    seeds.write(nestedAmong(0x82, 12, {0x83, 0x01, 0x01}));
    GooseMessage message;
    message.setData({dataBoolean(true), dataStructure({dataBoolean(false)}), dataInteger(-3)});
    seeds.write(*message.allData);
    seeds.write(samples({{1, 0}, {-1, 0x2000}, {2, 0xFFFFFFFF}}));
}

void writeQuerySeeds(Seeds seeds) {
    // A place and a window among many, a window among few, two files of packets.
    Bytes const windows = {0x10, 0x00, 0x01, 0x41, 0, 0x05, 0x41};
    for (std::uint8_t const pace : Bytes{0, 1, 0x40, 0x41, 0xF1}) {
        seeds.write(concat({windows, {2, 30}, repeat(pace, 30), {40}, repeat(1, 40)}));
        seeds.write(concat({windows, {1, 60}, repeat(pace, 20), {0xFF}, repeat(0x41, 39)}));
    }
}

}  // namespace TalFuzz
