#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/IndexOptions.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstddef>
#include <string>
#include <vector>

#include "faults/UnderFaults.hpp"
#include "index/IndexImage.hpp"
#include "support/Bytes.hpp"
#include "support/TempFile.hpp"

// Indexing that runs out of memory, and what must be in the store then.

namespace TalTest {

/// What the progress callback does to the store in its second call, before record 1000.
enum class Callback { none, clears, takesTheStore };

struct IndexingScenario {
    std::string name;
    /// Go into one store, one after the other.
    std::vector<Bytes> captures;
    TalIec61850Parser::Filter filter = {};
    Callback callback = Callback::none;
    /// The octets that the last capture lacks at its end.
    Bytes missing = {};
    TalIec61850Parser::IndexOptions options = {};
};

/// The captures of a scenario as files, and what they must be indexed to.
class IndexingUnderFaults {
public:
    explicit IndexingUnderFaults(IndexingScenario scenario);

    /// Indexes under this fault. The store must then hold every packet of the records before, and
    /// nothing else, and must be good for indexing all again.
    /// @return whether an allocation failed
    bool attempt(Fault const& fault) const;

private:
    struct Record {
        std::size_t capture = 0;
        std::size_t position = 0;
        Bytes octets = {};
        bool isWanted = false;
    };

    [[nodiscard]] std::vector<Record> records() const;
    void index(TalIec61850Parser::Db& db, TalIec61850Parser::Db& taken, int& calls) const;
    void indexPlainly(Record const& record, TalIec61850Parser::Db& db) const;
    /// The image after so many packets: record by record, without PcapParser.
    [[nodiscard]] IndexImage imageOfPackets(std::size_t firstRecord, std::size_t count) const;
    void expectRecordsBefore(TalIec61850Parser::Db const& db, TalIec61850Parser::Db const& taken,
                             int calls) const;
    void expectGoodForAnotherTime(TalIec61850Parser::Db& db) const;

    IndexingScenario scenario_;
    TempDir folder_;
    std::vector<std::string> paths_;
    std::vector<Record> records_;
    IndexImage whole_;
};

/// The packets of a store, counted one by one.
[[nodiscard]] std::size_t packetsIn(IndexImage const& image);

/// The first stream without a file, file without a packet or wrong count, in words; empty for none.
[[nodiscard]] std::string halfMade(IndexImage const& image);

}  // namespace TalTest
