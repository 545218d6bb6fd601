// Indexes the streams of one APPID, asks them for the packets of a time window, and decodes those.
//
//   index-and-decode APPID FROM TO FILE...
//
// APPID may be hexadecimal, as 0x4001; FROM and TO are seconds since 1970-01-01 UTC, with up to
// nine decimals.

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <atomic>
#include <cstdint>
#include <exception>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace TalIec61850Parser;

/// Seconds with up to nine decimals, such as 1710928800.25.
Timest parseTime(std::string const& text) {
    auto const point = text.find('.');
    Timest time{static_cast<std::uint32_t>(std::stoul(text.substr(0, point))), 0};
    if (point != std::string::npos) {
        std::string fraction = text.substr(point + 1);
        fraction.resize(9, '0');
        time.nanoseconds = static_cast<std::uint32_t>(std::stoul(fraction));
    }
    return time;
}

std::string timeOf(Package const& package) {
    std::string const fraction = std::to_string(package.time.nanoseconds);
    return std::to_string(package.time.seconds) + "." +
           std::string(fraction.size() < 9 ? 9 - fraction.size() : 0, '0') + fraction;
}

void printGoose(PackageFile const& file, Package const& package) {
    GoosePdu const pdu = GooseParser::parseGoosePDUFromFile(file.fileName, package.position);
    std::cout << "  " << timeOf(package) << " stNum " << pdu.stNum << " sqNum " << pdu.sqNum
              << " t " << pdu.t << " booleans";
    for (float const value : GooseParser::parseBooleanValues(pdu.allData)) {
        std::cout << " " << value;
    }
    std::cout << "\n";
}

void printSv(PackageFile const& file, Package const& package) {
    for (ASDUData const& asdu : SvParser::parseASDUFromFile(file.fileName, package.position)) {
        // The octets of a name are whatever was sent: render them before a terminal sees them.
        std::string const svID = Asn1Parser::bytesToString({asdu.svID.begin(), asdu.svID.end()});
        std::cout << "  " << timeOf(package) << " " << svID << " smpCnt " << asdu.smpCnt
                  << " values";
        for (SampleData const& sample : asdu.samples) {
            std::cout << " " << sample.value;
        }
        std::cout << "\n";
    }
}

/// The files of a query's result by name: the result itself is ordered by address.
template <typename Result>
auto byName(Result const& result) {
    std::map<std::string, typename Result::const_pointer> files;
    for (auto const& entry : result) {
        files.emplace(entry.first->fileName, &entry);
    }
    return files;
}

void printWindow(Db const& db, Timest const& from, Timest const& to) {
    for (Goose const& stream : db.gooseProto.streams) {
        auto const window = stream.getfilteredPackages(from, to);
        for (auto const& [name, entry] : byName(window)) {
            std::cout << stream.gocbRef.value_or("-") << " in " << name << "\n";
            for (Package const* const package : entry->second.packages) {
                printGoose(*entry->first, *package);
            }
        }
    }
    for (Sv const& stream : db.svProto.streams) {
        auto const window = stream.getfilteredPackages(from, to);
        for (auto const& [name, entry] : byName(window)) {
            std::cout << stream.svID.value_or("-") << " in " << name << "\n";
            for (Package const* const package : entry->second) {
                printSv(*entry->first, *package);
            }
        }
    }
}

/// Streams of one APPID, of either protocol.
Filter wanted(std::uint64_t appId) {
    Filter filter;
    filter.gooseFilters.emplace_back().appId = appId;
    filter.svFilters.emplace_back().appId = appId;
    return filter;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) {
        std::cerr << "usage: index-and-decode APPID FROM TO FILE...\n";
        return 1;
    }
    try {
        Filter const filter = wanted(std::stoul(argv[1], nullptr, 0));
        Timest const from = parseTime(argv[2]);
        Timest const to = parseTime(argv[3]);
        Db db;
        std::atomic<bool> const stop = false;  // another thread may set one to end the indexing
        for (int i = 4; i < argc; ++i) {
            PcapParser::parseFile(argv[i], db, filter, stop, {});
        }
        printWindow(db, from, to);
    } catch (std::exception const& problem) {
        std::cerr << "index-and-decode: " << problem.what() << "\n";
        return 1;
    }
}
