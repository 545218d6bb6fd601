#include <TalIec61850Scl/read/DecodeXml.hpp>
#include <TalIec61850Scl/read/Document.hpp>
#include <algorithm>
#include <new>
#include <utility>

namespace TalIec61850Scl::detail {

Document::Document(FileOctets octets, std::uint32_t file) : text_(std::move(octets)), file_(file) {
    if (auto const decoded = decodeXml(text_.view())) {
        text_ = copyOctets(*decoded);
    }
    std::string_view const text = text_.view();
    lines_ = LineTable(text);
    // The parser takes an octet 0 for the end.
    std::size_t const end = std::min(text.find('\0'), text.size());
    pugi::xml_parse_result const result = document_.load_buffer_inplace(
        text_.octets.get(), end, pugi::parse_default, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) {
        throw std::bad_alloc();
    }
    if (!result || end < text_.size) {
        std::size_t const at = result ? end : static_cast<std::size_t>(result.offset);
        brokenAt_ = SclPlace{.file = file_, .line = lines_.lineAt(at)};
    }
}

Element Document::root() const noexcept { return Element(document_.document_element()); }

SclPlace Document::placeOf(Element element) const {
    std::ptrdiff_t const offset = element ? element.offset() : -1;
    return {.file = file_,
            .line = offset < 0 ? 0 : lines_.lineAt(static_cast<std::size_t>(offset))};
}

}  // namespace TalIec61850Scl::detail
