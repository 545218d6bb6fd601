#include "tools/Compress.hpp"

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <stdexcept>

namespace TalTest {

namespace {

void require(archive* writer, int status) {
    if (status < ARCHIVE_WARN) {
        throw std::runtime_error(archive_error_string(writer));
    }
}

}  // namespace

Bytes compressed(Bytes const& octets, std::string const& filter) {
    Bytes packed(2 * octets.size() + 4096);
    std::size_t used = 0;
    std::unique_ptr<archive, int (*)(archive*)> const owner(archive_write_new(),
                                                            archive_write_free);
    archive* const writer = owner.get();
    require(writer, archive_write_add_filter_by_name(writer, filter.c_str()));
    require(writer, archive_write_set_format_raw(writer));
    require(writer, archive_write_set_bytes_per_block(writer, 0));
    require(writer, archive_write_open_memory(writer, packed.data(), packed.size(), &used));
    std::unique_ptr<archive_entry, void (*)(archive_entry*)> const entry(archive_entry_new(),
                                                                         archive_entry_free);
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    require(writer, archive_write_header(writer, entry.get()));
    require(writer, static_cast<int>(archive_write_data(writer, octets.data(), octets.size())));
    require(writer, archive_write_close(writer));
    packed.resize(used);
    return packed;
}

}  // namespace TalTest
