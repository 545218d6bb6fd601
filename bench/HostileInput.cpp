#include "bench/HostileInput.hpp"

#include <TalIec61850Parser/capture/PcapParser.hpp>
#include <algorithm>
#include <atomic>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "bench/PacketsIn.hpp"
#include "bench/Workloads.hpp"
#include "capture/SmallStack.hpp"
#include "support/Apdu.hpp"
#include "support/Ber.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"
#include "support/SampledValues.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalIec61850Parser::Db;
using TalTest::Bytes;

namespace {

constexpr std::uint64_t ordinaryFrames = 400'000;

}  // namespace

HostileInput ordinaryInput() {
    return {.name = "ordinary",
            .write =
                [](std::string const& path) {
                    writeCapture(withFrames(workload("sv16"), ordinaryFrames), path);
                },
            .use = indexes(16, ordinaryFrames)};
}

std::vector<HostileInput> const& hostileInputs() {
    static std::vector<HostileInput> const all = [] {
        std::vector<HostileInput> inputs;
        addNestedInputs(inputs);
        addFrameInputs(inputs);
        addStreamInputs(inputs);
        addFileInputs(inputs);
        addDecodeInputs(inputs);
        return inputs;
    }();
    return all;
}

HostileInput hostileInput(std::string_view name) {
    if (HostileInput ordinary = ordinaryInput(); ordinary.name == name) {
        return ordinary;
    }
    auto const found = std::ranges::find(hostileInputs(), name, &HostileInput::name);
    requireSo(found != hostileInputs().end(), "no input of this name");
    return *found;
}

std::function<void(std::string const&)> writesFrames(std::uint64_t count,
                                                     std::function<Bytes(std::uint64_t)> frame) {
    return [count, frame = std::move(frame)](std::string const& path) {
        std::ofstream out(path, std::ios::binary);
        TalTest::CaptureWriter writer(out, TalTest::CaptureVariant::microLittle);
        for (std::uint64_t number = 0; number < count; ++number) {
            writer.add(TalTest::stationStart, static_cast<std::uint32_t>(number), frame(number));
        }
        writer.flush();
        requireSo(out.good(), "cannot write " + path);
    };
}

std::function<void(std::string const&)> indexes(std::size_t streams, std::uint64_t packets,
                                                TalIec61850Parser::Filter filter) {
    return [streams, packets, filter = std::move(filter)](std::string const& path) {
        Db db;
        std::atomic<bool> const neverStop = false;
        TalIec61850Parser::PcapParser::parseFile(path, db, filter, neverStop, {});
        requireSo(db.gooseProto.getGooseCount() + db.svProto.getSvCount() == streams,
                  "the index holds other streams than it should");
        requireSo(packetsIn(db) == packets, "the index holds other packets than it should");
    };
}

std::function<void(std::string const&)> onSmallStack(std::function<void(std::string const&)> use) {
    return [use = std::move(use)](std::string const& path) {
        std::exception_ptr failure;
        TalTest::runOnSmallStack([&] {
            try {
                use(path);
            } catch (...) {
                failure = std::current_exception();
            }
        });
        if (failure) {
            std::rethrow_exception(failure);
        }
    };
}

void requireSo(bool isSo, std::string_view what) {
    if (!isSo) {
        throw std::runtime_error(std::string(what));
    }
}

Bytes gooseFrameOf(Bytes const& pdu) {
    return TalTest::ethernetFrame({}, TalTest::etherTypeGoose, TalTest::apdu({.length = 0}, pdu));
}

Bytes svFrameOf(Bytes const& pdu) {
    return TalTest::ethernetFrame(TalTest::svEthernet(), TalTest::etherTypeSampledValues,
                                  TalTest::apdu({.length = 0}, pdu));
}

Bytes repeated(Bytes const& octets, std::size_t times) {
    Bytes out;
    out.reserve(octets.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        TalTest::append(out, octets);
    }
    return out;
}

}  // namespace TalBench
