#include <TalIec61850Parser/capture/lane/KnownStream.hpp>
#include <optional>
#include <variant>

namespace TalIec61850Parser::detail {

namespace {

bool isSameVlan(std::optional<VlanInfo> const& a, std::optional<VlanInfo> const& b) {
    return a.has_value() == b.has_value() &&
           (!a || (a->vlanId == b->vlanId && a->priority == b->priority && a->dei == b->dei));
}

bool isSameHsr(std::optional<HsrInfo> const& a, std::optional<HsrInfo> const& b) {
    return a.has_value() == b.has_value() &&
           (!a || (a->lanId == b->lanId && a->hsrSpare1 == b->hsrSpare1 &&
                   a->hsrSpare2 == b->hsrSpare2 && a->hsrSpare3 == b->hsrSpare3));
}

/// Whether two records are equal in all that the hash and the equality of their set look at, also
/// in which members are set. What differs most often comes first.
template <typename Stream>
bool isSameHeader(Stream const& a, Stream const& b) {
    return a.appId == b.appId && a.confRev == b.confRev && a.reserved1Bit0 == b.reserved1Bit0 &&
           isSameVlan(a.vlan, b.vlan) && a.srcMac == b.srcMac && a.dstMac == b.dstMac;
}

bool isSameStream(Sv const& a, Sv const& b) {
    return isSameHeader(a, b) && isSameHsr(a.hsr, b.hsr) && a.svID == b.svID;
}

bool isSameStream(Goose const& a, Goose const& b) {
    return isSameHeader(a, b) && a.simulation == b.simulation && a.goID == b.goID &&
           a.gocbRef == b.gocbRef && a.datSet == b.datSet;
}

auto const& streamsOf(Db const& db, Goose const& /*stream*/) { return db.gooseProto.streams; }
auto const& streamsOf(Db const& db, Sv const& /*stream*/) { return db.svProto.streams; }

StreamPlace placeIn(Goose const& stream, PackageFile const& file) {
    return {.file = &file, .packetCount = &stream.packetCount, .sv = nullptr};
}

StreamPlace placeIn(Sv const& stream, PackageFile const& file) {
    return {.file = &file, .packetCount = &stream.packetCount, .sv = &stream};
}

/// Calls `visit` with the stream that a record is of; none has no place.
template <typename Result, typename Visit>
Result visitStream(StreamRecord const& record, Visit const& visit) {
    if (auto const* const sv = std::get_if<Sv>(&record)) {
        return visit(*sv);
    }
    if (auto const* const goose = std::get_if<Goose>(&record)) {
        return visit(*goose);
    }
    return Result();
}

}  // namespace

StreamPlace KnownStream::findQuickly(Db const& db, std::string const& fileName) const {
    return visitStream<StreamPlace>(record_, [&](auto const& wanted) -> StreamPlace {
        auto const& streams = streamsOf(db, wanted);
        if (streams.bucket_count() != bucketCount_) {
            return {};
        }
        for (auto stream = streams.begin(bucket_); stream != streams.end(bucket_); ++stream) {
            if (isSameStream(*stream, wanted)) {
                bool const isOnlyFile =
                    stream->files.size() == 1 && stream->files.begin()->fileName == fileName;
                return isOnlyFile ? placeIn(*stream, *stream->files.begin()) : StreamPlace();
            }
        }
        return {};
    });
}

void KnownStream::noteBucket(Db const& db) {
    bucketCount_ = visitStream<std::size_t>(record_, [&](auto const& known) {
        auto const& streams = streamsOf(db, known);
        bucket_ = streams.bucket(known);
        return streams.bucket_count();
    });
}

}  // namespace TalIec61850Parser::detail
