#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/traffic/CaptureWindow.hpp>
#include <algorithm>
#include <iterator>

namespace TalIec61850Analysis::detail {

CaptureWindow::CaptureWindow(TrafficIndex const& index, std::size_t pieces, std::size_t first)
    : mostPieces_(pieces), first_(first) {
    for (IndexedFile const& file : index.files()) {
        paths_.push_back(file.summary.path);
    }
}

void CaptureWindow::open(std::uint32_t file) {
    current_ = nullptr;
    auto const known = std::find_if(open_.begin(), open_.end(),
                                    [&](Open const& open) { return open.number == file; });
    if (known != open_.end()) {
        open_.splice(open_.begin(), open_, known);
        return;
    }
    if (open_.size() == kMostOpen) {
        open_.pop_back();
    }
    open_.push_front({.number = file, .file = openToRead(paths_[file]), .pieces = {}});
}

/// Reads a piece, in place of the one that was read longest ago.
void CaptureWindow::read(Open& open, std::uint64_t fileOffset, std::size_t size) const {
    // What is asked for next is mostly after this, if this is after what was asked for before.
    std::size_t wanted = first_;
    std::uint64_t before = first_ == kWindow ? std::min<std::uint64_t>(fileOffset, kBefore) : 0;
    if (!open.pieces.empty()) {
        Piece const& last = open.pieces.front();
        if (fileOffset >= last.start && fileOffset < last.end() + kGap) {
            wanted = std::min(2 * last.wanted, kWindow);
            before = std::min<std::uint64_t>(fileOffset, kBefore);
        }
    }
    if (open.pieces.size() < mostPieces_) {
        open.pieces.push_front({.octets = std::make_unique_for_overwrite<std::uint8_t[]>(kWindow)});
    } else {
        open.pieces.splice(open.pieces.begin(), open.pieces, std::prev(open.pieces.end()));
    }
    Piece& piece = open.pieces.front();
    piece.wanted = wanted;
    piece.start = fileOffset - before;
    piece.size = 0;
    std::size_t const most = std::max<std::size_t>(wanted, before + size);
    piece.size = readAt(open.file, piece.start, {piece.octets.get(), most});
}

Octets CaptureWindow::readAround(std::uint32_t file, std::uint64_t fileOffset, std::size_t size) {
    open(file);
    auto& pieces = open_.front().pieces;
    auto const known = std::find_if(pieces.begin(), pieces.end(), [&](Piece const& piece) {
        return piece.held().at(fileOffset, size) != nullptr;
    });
    if (known == pieces.end()) {
        read(open_.front(), fileOffset, size);
    }
    Piece& piece = known == pieces.end() ? pieces.front() : *known;
    current_ = &piece;
    file_ = file;
    if (fileOffset >= piece.end()) {
        return {};
    }
    return {piece.octets.get() + (fileOffset - piece.start),
            std::min<std::size_t>(size, piece.end() - fileOffset)};
}

}  // namespace TalIec61850Analysis::detail
