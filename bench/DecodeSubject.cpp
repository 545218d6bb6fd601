#include <fcntl.h>
#include <unistd.h>

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"
#include "support/CaptureFile.hpp"

namespace TalBench {

using TalIec61850Parser::Db;

namespace {

constexpr std::uint64_t numFrames = 10'000;

/// A small capture, and one packet in the middle of a stream in it.
class IndexedCapture {
public:
    explicit IndexedCapture(Workload workload) : capture_((workload.frames = numFrames, workload)) {
        std::atomic<bool> const neverStop = false;
        TalIec61850Parser::PcapParser::parseFile(capture_.path(), db_, {}, neverStop, {});
    }

    [[nodiscard]] Db const& db() const { return db_; }
    [[nodiscard]] std::string const& path() const { return capture_.path(); }

    /// How many octets lie between a position and the end of its record.
    [[nodiscard]] std::size_t octetsAt(std::uint64_t position) const {
        for (auto const& record : TalTest::readCapture(capture_.path())) {
            std::uint64_t const end =
                record.position + TalTest::recordHeaderSize + record.frame.size();
            if (position < end) {
                return end - position;
            }
        }
        throw std::logic_error("an indexed packet lies behind the last record");
    }

private:
    CaptureOnDisk capture_;
    Db db_;
};

std::uint64_t middlePosition(auto const& streams) {
    auto const& packages = streams.begin()->files.begin()->packages;
    return packages[packages.size() / 2].position;
}

Race::Body readOctets(std::string const& path, std::uint64_t position, std::size_t count) {
    return [=](benchmark::State& state) {
        std::vector<char> octets(count);
        for (auto _ : state) {
            int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
            ::lseek(file, static_cast<off_t>(position), SEEK_SET);
            ssize_t const got = ::read(file, octets.data(), octets.size());
            ::close(file);
            if (got != static_cast<ssize_t>(count)) {
                state.SkipWithError("the packet's octets cannot be read");
                return;
            }
        }
    };
}

Race::Body gooseFromFile(std::string const& path, std::uint64_t position) {
    return [=](benchmark::State& state) {
        for (auto _ : state) {
            auto pdu = TalIec61850Parser::GooseParser::parseGoosePDUFromFile(path, position);
            if (pdu.allData.empty()) {
                state.SkipWithError("the goosePdu was not decoded");
                return;
            }
        }
    };
}

Race::Body svFromFile(std::string const& path, std::uint64_t position) {
    return [=](benchmark::State& state) {
        for (auto _ : state) {
            auto asdus = TalIec61850Parser::SvParser::parseASDUFromFile(path, position);
            if (asdus.size() != 1) {
                state.SkipWithError("the ASDU was not decoded");
                return;
            }
        }
    };
}

}  // namespace

void measureDecode(Settings const& settings) {
    IndexedCapture const goose(workload("goose64"));
    IndexedCapture const sv(workload("sv16"));
    std::uint64_t const goosePosition = middlePosition(goose.db().gooseProto.streams);
    std::uint64_t const svPosition = middlePosition(sv.db().svProto.streams);

    Race race("decode");
    race.addShort("read-goose",
                  readOctets(goose.path(), goosePosition, goose.octetsAt(goosePosition)));
    race.addShort("goose", gooseFromFile(goose.path(), goosePosition));
    race.addShort("read-sv", readOctets(sv.path(), svPosition, sv.octetsAt(svPosition)));
    race.addShort("sv", svFromFile(sv.path(), svPosition));
    auto taken = race.run(settings.rounds);
    printRatio("decode GOOSE / open, lseek, read, close", taken["goose"], taken["read-goose"]);
    printRatio("decode SV / open, lseek, read, close", taken["sv"], taken["read-sv"]);
}

}  // namespace TalBench
