#pragma once

// Internal: finds a stream in the store again, after something else had access to it.

#include <TalIec61850Parser/capture/index/IndexFrame.hpp>
#include <TalIec61850Parser/capture/index/StreamPlace.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>
#include <string>
#include <utility>

namespace TalIec61850Parser::detail {

/// A stream that frames were found to be of.
///
/// Hashing its names is most of what finding it by its record takes. So the bucket of the set in
/// which it was found is kept, and searched for a stream that is equal to the record in all that
/// the set's hash and equality look at: of these a set holds no two, so it is the one that the set
/// itself would find. Nothing that the store held before is relied on, neither the set nor its
/// streams.
class KnownStream {
public:
    explicit KnownStream(StreamRecord record) : record_(std::move(record)) {}

    [[nodiscard]] StreamRecord const& record() const { return record_; }

    /// Where packets of the stream go, if it can be told quickly: it is in the bucket and has a
    /// single file, of this name. Otherwise no place, which says nothing.
    [[nodiscard]] StreamPlace findQuickly(Db const& db, std::string const& fileName) const;

    /// Keeps the bucket in which the stream is now.
    /// @pre the store holds the stream
    void noteBucket(Db const& db);

private:
    StreamRecord record_;
    std::size_t bucket_ = 0;
    /// Of the set, when the bucket was noted; 0 for never.
    std::size_t bucketCount_ = 0;
};

}  // namespace TalIec61850Parser::detail
