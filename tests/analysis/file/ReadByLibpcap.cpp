#include "analysis/file/ReadByLibpcap.hpp"

#include <pcap/pcap.h>

#include <array>
#include <iomanip>
#include <memory>
#include <sstream>

namespace TalIec61850Analysis {
namespace {

using TalTest::Bytes;

struct Closer {
    void operator()(pcap_t* handle) const { pcap_close(handle); }
};

}  // namespace

LibpcapRead readByLibpcap(std::string const& path) {
    LibpcapRead read;
    std::array<char, PCAP_ERRBUF_SIZE> error = {};
    std::unique_ptr<pcap_t, Closer> const handle(pcap_open_offline_with_tstamp_precision(
        path.c_str(), PCAP_TSTAMP_PRECISION_NANO, error.data()));
    if (!handle) {
        read.refusal = error.data();
        return read;
    }
    read.linkType = pcap_datalink(handle.get());
    pcap_pkthdr* header = nullptr;
    unsigned char const* octets = nullptr;
    int status = 0;
    while ((status = pcap_next_ex(handle.get(), &header, &octets)) == 1) {
        // With this precision the microseconds are nanoseconds.
        read.records.push_back(recordText(header->ts.tv_sec, header->ts.tv_usec, header->caplen,
                                          header->len, Bytes(octets, octets + header->caplen)));
    }
    if (status != PCAP_ERROR_BREAK) {
        read.refusal = pcap_geterr(handle.get());
    }
    return read;
}

std::string recordText(std::optional<std::int64_t> seconds, std::int64_t nanoseconds,
                       std::uint32_t capturedSize, std::uint32_t originalSize, Bytes const& frame) {
    std::ostringstream text;
    if (seconds) {
        text << *seconds << '.' << std::setfill('0') << std::setw(9) << nanoseconds;
    } else {
        text << "no time";
    }
    text << ", " << capturedSize << " of " << originalSize << ": " << std::hex << std::setfill('0');
    for (std::uint8_t const octet : frame) {
        text << std::setw(2) << unsigned{octet};
    }
    return text.str();
}

std::string recordText(std::optional<std::int64_t> seconds, std::int64_t nanoseconds,
                       Bytes const& frame) {
    auto const size = static_cast<std::uint32_t>(frame.size());
    return recordText(seconds, nanoseconds, size, size, frame);
}

std::vector<std::string> recordTexts(ReadCapture const& read) {
    constexpr std::int64_t second = 1'000'000'000;
    std::vector<std::string> texts;
    for (auto const& [record, frame] : read.records) {
        std::optional<std::int64_t> seconds;
        std::int64_t nanoseconds = 0;
        if (record.time) {
            std::int64_t const time = record.time->time_since_epoch().count();
            seconds = time / second;
            nanoseconds = time % second;
        }
        texts.push_back(
            recordText(seconds, nanoseconds, record.capturedSize, record.originalSize, frame));
    }
    return texts;
}

}  // namespace TalIec61850Analysis
