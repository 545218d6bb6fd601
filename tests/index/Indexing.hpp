#pragma once

// Runs the library and the plain index over the same capture files.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/IndexOptions.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "index/IndexImage.hpp"
#include "support/Bytes.hpp"

namespace TalTest {

/// A filter that admits everything.
inline TalIec61850Parser::Filter const everything = {};

/// Lets the library add a capture file to a store.
void indexInto(TalIec61850Parser::Db& db, std::string const& path,
               TalIec61850Parser::Filter const& filter = everything,
               TalIec61850Parser::IndexOptions const& options = {});

/// What the library holds after the files, indexed one after the other into one store.
/// @throws std::logic_error when it depends on whether the files are read ahead
IndexImage libraryImage(std::vector<std::string> const& paths,
                        TalIec61850Parser::Filter const& filter = everything);

/// What the plain index holds after the same.
IndexImage plainImage(std::vector<std::string> const& paths,
                      TalIec61850Parser::Filter const& filter = everything);

/// The first thing in which the library differs from the plain index, in words; empty for none.
std::string disagreement(std::vector<std::string> const& paths,
                         TalIec61850Parser::Filter const& filter = everything);

/// One packet of a store: of a GOOSE stream or of an SV stream, the other is null.
struct IndexedPacket {
    TalIec61850Parser::Goose const* goose = nullptr;
    TalIec61850Parser::Sv const* sv = nullptr;
    TalIec61850Parser::Package package = {};
};

/// The packets of a store that holds one file, by position; those without a position are left out.
std::map<std::uint64_t, IndexedPacket> packetsByPosition(TalIec61850Parser::Db const& db);

/// A file in memory that is given one content after the other; removed on destruction.
class ScratchFile {
public:
    explicit ScratchFile(Bytes const& content = {});
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    ~ScratchFile();

    void assign(Bytes const& content);

    [[nodiscard]] std::string const& path() const { return path_; }

private:
    int descriptor_;
    std::string path_;
};

}  // namespace TalTest
