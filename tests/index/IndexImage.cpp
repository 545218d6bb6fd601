#include "index/IndexImage.hpp"

#include <algorithm>
#include <iomanip>
#include <optional>
#include <sstream>
#include <type_traits>

namespace TalTest {

using namespace TalIec61850Parser;

namespace {

// Appended to strings: images are made by the million, and streams of text are slow.

std::string quoted(std::string const& value) {
    std::string text = "\"";
    for (char const c : value) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + '"';
}

template <typename T>
std::string textOf(T const& value) {
    if constexpr (std::is_same_v<T, std::string>)
        return quoted(value);
    else if constexpr (std::is_same_v<T, char>)
        return std::string(1, value);
    else
        return std::to_string(static_cast<std::uint64_t>(value));
}

template <typename T>
void write(std::string& out, char const* name, std::optional<T> const& value) {
    out += ' ';
    out += name;
    out += '=';
    out += value ? textOf(*value) : "-";
}

template <typename Identifer>
void writeLink(std::string& out, Identifer const& id) {
    write(out, "srcMac", id.srcMac);
    write(out, "dstMac", id.dstMac);
    out += id.vlan ? " vlan(" : " vlan=-";
    if (id.vlan) {
        write(out, "priority", id.vlan->priority);
        write(out, "dei", id.vlan->dei);
        write(out, "vlanId", id.vlan->vlanId);
        out += " )";
    }
    out += id.hsr ? " hsr(" : " hsr=-";
    if (id.hsr) {
        write(out, "spare1", id.hsr->hsrSpare1);
        write(out, "lanId", id.hsr->lanId);
        write(out, "spare2", id.hsr->hsrSpare2);
        write(out, "spare3", id.hsr->hsrSpare3);
        out += " )";
    }
    out += id.prp ? " prp(" : " prp=-";
    if (id.prp) {
        write(out, "lanId", id.prp->lanId);
        out += " )";
    }
    write(out, "appId", id.appId);
    write(out, "reserved1Bit0", id.reserved1Bit0);
}

std::vector<FileImage> filesOf(PackageFileSet const& files) {
    std::vector<FileImage> images;
    for (PackageFile const& file : files) {
        FileImage image{file.fileName, {}};
        for (Package const& packet : file.packages)
            image.packets.push_back(
                {packet.time.seconds, packet.time.nanoseconds, packet.position});
        images.push_back(std::move(image));
    }
    return images;
}

std::string streamDifference(StreamImage const& actual, StreamImage const& expected) {
    std::ostringstream text;
    if (actual.identity != expected.identity)
        text << "identity " << actual.identity << "\n expected " << expected.identity;
    else
        text << "actual " << actual << "\nexpected " << expected;
    std::vector<PacketImage> const a = packetsOf(actual);
    std::vector<PacketImage> const b = packetsOf(expected);
    std::size_t const shared = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < shared; ++i) {
        if (a[i] == b[i]) continue;
        text << "\npacket " << i << ": " << a[i] << ", expected " << b[i];
        break;
    }
    return text.str();
}

}  // namespace

std::ostream& operator<<(std::ostream& out, PacketImage const& packet) {
    return out << packet.seconds << '.' << std::setw(9) << std::setfill('0') << packet.nanoseconds
               << std::setfill(' ') << '@' << packet.position;
}

std::ostream& operator<<(std::ostream& out, StreamImage const& stream) {
    constexpr std::size_t shown = 8;
    out << stream.identity << "\n  packetCount " << stream.packetCount << ", maxSmpCnt "
        << stream.maxSmpCnt << ", smpRate " << stream.smpRate << ", maxNoASDU " << stream.maxNoASDU;
    for (FileImage const& file : stream.files) {
        out << "\n  " << file.fileName << ", " << file.packets.size() << " packets:";
        for (std::size_t i = 0; i < std::min(shown, file.packets.size()); ++i)
            out << ' ' << file.packets[i];
    }
    return out;
}

std::ostream& operator<<(std::ostream& out, IndexImage const& image) {
    for (StreamImage const& stream : image.streams) out << stream << '\n';
    return out;
}

std::string identityText(TalIec61850::GooseIdentifer const& goose) {
    std::string out = "goose";
    writeLink(out, goose);
    write(out, "gocbRef", goose.gocbRef);
    write(out, "datSet", goose.datSet);
    write(out, "goID", goose.goID);
    write(out, "simulation", goose.simulation);
    write(out, "confRev", goose.confRev);
    return out;
}

std::string identityText(TalIec61850::SvIdentifer const& sv) {
    std::string out = "sv";
    writeLink(out, sv);
    write(out, "spareText", sv.spareText);
    write(out, "svID", sv.svID);
    write(out, "confRev", sv.confRev);
    return out;
}

IndexImage sorted(IndexImage image) {
    auto const byIdentity = [](StreamImage const& a, StreamImage const& b) {
        return a.identity < b.identity;
    };
    auto const byName = [](FileImage const& a, FileImage const& b) {
        return a.fileName < b.fileName;
    };
    std::sort(image.streams.begin(), image.streams.end(), byIdentity);
    for (StreamImage& stream : image.streams)
        std::sort(stream.files.begin(), stream.files.end(), byName);
    return image;
}

IndexImage imageOf(Db const& db) {
    IndexImage image;
    for (Goose const& goose : db.gooseProto.streams)
        image.streams.push_back(
            {identityText(goose), goose.packetCount, 0, 0, 0, filesOf(goose.files)});
    for (Sv const& sv : db.svProto.streams)
        image.streams.push_back({identityText(sv), sv.packetCount, sv.maxSmpCnt, sv.smpRate,
                                 sv.maxNoASDU, filesOf(sv.files)});
    return sorted(std::move(image));
}

std::string difference(IndexImage const& actual, IndexImage const& expected) {
    if (actual == expected) return {};
    std::size_t const shared = std::min(actual.streams.size(), expected.streams.size());
    for (std::size_t i = 0; i < shared; ++i)
        if (!(actual.streams[i] == expected.streams[i]))
            return streamDifference(actual.streams[i], expected.streams[i]);
    std::ostringstream text;
    text << actual.streams.size() << " streams, expected " << expected.streams.size();
    if (actual.streams.size() > shared) text << "; not expected: " << actual.streams[shared];
    if (expected.streams.size() > shared) text << "; missing: " << expected.streams[shared];
    return text.str();
}

IndexImage withoutStatistics(IndexImage image) {
    for (StreamImage& stream : image.streams)
        stream.packetCount = stream.maxSmpCnt = stream.smpRate = stream.maxNoASDU = 0;
    return image;
}

IndexImage withFileName(IndexImage image, std::string const& fileName) {
    for (StreamImage& stream : image.streams)
        for (FileImage& file : stream.files) file.fileName = fileName;
    return image;
}

std::vector<PacketImage> packetsOf(StreamImage const& stream) {
    std::vector<PacketImage> packets;
    for (FileImage const& file : stream.files)
        packets.insert(packets.end(), file.packets.begin(), file.packets.end());
    return packets;
}

StreamImage const* findStream(IndexImage const& image, std::string const& identity) {
    for (StreamImage const& stream : image.streams)
        if (stream.identity == identity) return &stream;
    return nullptr;
}

}  // namespace TalTest
