// What the decoders of single packets are given.

#include <TalIec61850Parser/goose/GooseParser.hpp>
#include <TalIec61850Parser/sv/SvParser.hpp>
#include <fstream>
#include <utility>

#include "bench/HostileInput.hpp"
#include "support/Ber.hpp"
#include "support/CaptureFile.hpp"

namespace TalBench {

using TalIec61850Parser::GooseParser;
using TalIec61850Parser::GoosePdu;
using TalTest::Bytes;

namespace {

/// What two length octets can say.
constexpr std::size_t maxContent = 65'535;
constexpr std::uint64_t manyTimes = 100;

std::function<void(std::string const&)> writes(std::function<Bytes()> octets) {
    return [octets = std::move(octets)](std::string const& path) {
        std::ofstream out(path, std::ios::binary);
        Bytes const content = octets();
        out.write(reinterpret_cast<char const*>(content.data()),
                  static_cast<std::streamsize>(content.size()));
        out.close();
        requireSo(out.good(), "cannot write " + path);
    };
}

std::function<void(std::string const&)> readsBooleans(std::size_t count, std::uint64_t times) {
    return [=](std::string const& path) {
        Bytes const data = TalTest::readFile(path);
        for (std::uint64_t i = 0; i < times; ++i) {
            requireSo(GooseParser::parseBooleanValues(data).size() == count,
                      "other booleans than there are");
        }
    };
}

HostileInput nestedBooleans(std::string name, Bytes const& behind, Bytes const& innermost,
                            std::size_t count, HostileLimits limits) {
    constexpr std::uint8_t structure = 0x82;
    return {.name = std::move(name),
            .write = writes([=] {
                return behind.empty() ? TalTest::nested(structure, million, innermost)
                                      : TalTest::nestedAmong(structure, million, behind);
            }),
            .use = onSmallStack(readsBooleans(count, 1)),
            .limits = limits};
}

HostileInput flatBooleans(std::string name, Bytes const& element, std::size_t count,
                          HostileLimits limits) {
    return {.name = std::move(name),
            .write = writes([=] { return repeated(element, million); }),
            .use = readsBooleans(count, 1),
            .limits = limits};
}

/// Fields of a goosePdu in which no octet says much.
HostileInput fields(std::string name, Bytes const& field, HostileLimits limits) {
    return {.name = std::move(name),
            .write = writes([=] { return repeated(field, 50); }),
            .use =
                [](std::string const& path) {
                    Bytes const content = TalTest::readFile(path);
                    for (std::uint64_t i = 0; i < manyTimes; ++i) {
                        GoosePdu pdu;
                        requireSo(GooseParser::_parseGoosePdu(content, pdu), "fields are missing");
                    }
                },
            .limits = limits,
            .repeats = manyTimes};
}

/// A sequence of ASDU in a file of its own.
HostileInput asdus(std::string name, Bytes const& sequence, std::size_t count,
                   HostileLimits limits) {
    return {.name = std::move(name),
            .write = writes([=] { return TalTest::ber(0xA2, sequence); }),
            .use =
                [count](std::string const& path) {
                    for (std::uint64_t i = 0; i < manyTimes; ++i) {
                        requireSo(
                            TalIec61850Parser::SvParser::parseASDUFromFile(path, 0).size() == count,
                            "other ASDUs than there are");
                    }
                },
            .limits = limits,
            .repeats = manyTimes};
}

/// One ASDU as large as a sequence can hold.
Bytes largeAsdu(Bytes const& element) {
    constexpr std::size_t headerSize = 4;
    return TalTest::ber(0x30, repeated(element, (maxContent - headerSize) / element.size()));
}

void addBooleans(std::vector<HostileInput>& inputs) {
    Bytes const boolean = {0x83, 0x01, 0xFF};
    inputs.push_back(
        nestedBooleans("booleans-million-levels", {}, boolean, 1, {.time = 25, .memory = 28}));
    inputs.push_back(nestedBooleans("booleans-million-levels-and-back", boolean, {}, million,
                                    {.time = 110, .memory = 120}));
    inputs.push_back(flatBooleans("booleans-million-empty-elements", {0x84, 0x00}, 0,
                                  {.time = 30, .memory = 14}));
    inputs.push_back(
        flatBooleans("booleans-million-flat", boolean, million, {.time = 30, .memory = 60}));
}

void addFields(std::vector<HostileInput>& inputs) {
    inputs.push_back(fields("goosepdu-50-times", TalTest::ber(0x84, Bytes(4, 0x40)),
                            {.time = 240, .memory = 1}));
    inputs.push_back(fields("goosepdu-50-names", TalTest::ber(0x80, Bytes(127, 0x01)),
                            {.time = 60, .memory = 1}));
    inputs.push_back(fields("goosepdu-50-alldata", TalTest::ber(0xAB, Bytes(maxContent, 0x01)),
                            {.time = 1, .memory = 20}));
}

void addAsdus(std::vector<HostileInput>& inputs) {
    Bytes const sample = TalTest::ber(0x87, Bytes(8));
    inputs.push_back(
        asdus("asdu-64k-empty-names", largeAsdu({0x80, 0x00}), 1, {.time = 40, .memory = 1}));
    inputs.push_back(asdus("asdu-64k-samples", largeAsdu(sample), 1, {.time = 8, .memory = 1}));
    inputs.push_back(
        asdus("asdu-64k-octet-by-octet", largeAsdu({0x00}), 1, {.time = 8, .memory = 1}));
    inputs.push_back(asdus("asdu-64k-of-empty-asdus", repeated({0x30, 0x00}, maxContent / 2), 50,
                           {.time = 1, .memory = 1}));
    inputs.push_back(
        asdus("asdu-64k-without-asdu", Bytes(maxContent), 0, {.time = 10, .memory = 1}));
}

}  // namespace

void addDecodeInputs(std::vector<HostileInput>& inputs) {
    addBooleans(inputs);
    addFields(inputs);
    addAsdus(inputs);
}

}  // namespace TalBench
