#pragma once

// Internal: the XML of one file.

#include <TalIec61850Scl/model/Diagnostic.hpp>
#include <TalIec61850Scl/read/Element.hpp>
#include <TalIec61850Scl/read/FileOctets.hpp>
#include <TalIec61850Scl/read/LineTable.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace TalIec61850Scl::detail {

/// One file, parsed as far as it is XML.
class Document {
public:
    /// @param octets  of the file
    /// @param file    its number among those that are read
    /// @throws std::bad_alloc  where memory ends
    Document(FileOctets octets, std::uint32_t file);
    Document(Document const&) = delete;
    Document& operator=(Document const&) = delete;
    ~Document() = default;

    /// The outermost element; none where there is none.
    [[nodiscard]] Element root() const noexcept;
    /// Where the XML ends that can be parsed; not set where all of it can.
    [[nodiscard]] std::optional<SclPlace> brokenAt() const noexcept { return brokenAt_; }
    /// Where an element is.
    [[nodiscard]] SclPlace placeOf(Element element) const;
    /// Its size in UTF-8.
    [[nodiscard]] std::size_t size() const noexcept { return text_.size; }

private:
    /// As parsing left it.
    FileOctets text_;
    LineTable lines_;
    std::uint32_t file_;
    pugi::xml_document document_;
    std::optional<SclPlace> brokenAt_;
};

}  // namespace TalIec61850Scl::detail
