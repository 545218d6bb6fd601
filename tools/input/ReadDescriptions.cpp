#include "tools/input/ReadDescriptions.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureCheck.hpp>
#include <TalIec61850Scl/read/ReadStation.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/input/FilesBelow.hpp"
#include "tools/output/NearestWords.hpp"
#include "tools/output/TextEscape.hpp"

namespace TalIec61850Tools {

using TalIec61850Analysis::FileIdentity;
using TalIec61850Scl::Diagnostic;
using TalIec61850Scl::DiagnosticCode;

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 5> kExtensions = {".scd", ".cid", ".icd", ".iid", ".ssd"};

bool isCalledDescription(std::string const& path) {
    std::string const extension = fs::path(path).extension();
    return std::any_of(kExtensions.begin(), kExtensions.end(),
                       [&](std::string_view known) { return isSameWord(known, extension); });
}

/// Whether a file is at least meant to be XML: it begins with < after blanks, or as UTF-16 does.
bool startsLikeXml(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    constexpr int utf16LittleEndian = 0xFF;
    constexpr int utf16BigEndian = 0xFE;
    int const first = file.peek();
    if (first == utf16LittleEndian || first == utf16BigEndian || first == 0) {
        return true;
    }
    constexpr int utf8Mark = 0xEF;
    if (first == utf8Mark) {
        file.ignore(3);
    }
    return (file >> std::ws).peek() == '<';
}

/// What is known of a file as a whole.
struct FileVerdict {
    bool isScl = true;
    /// Why it cannot be read: it was changed or taken away since it was looked at.
    std::optional<std::string> unreadable;
    /// Where XML ends that can be read.
    std::optional<std::uint32_t> endsAtLine;
    bool hasControlBlock = false;

    [[nodiscard]] bool isUsable() const {
        return isScl && !unreadable && (!endsAtLine || hasControlBlock);
    }
};

class DescriptionReader {
public:
    void follow(std::string const& argument) {
        std::error_code ignored;
        if (fs::is_directory(argument, ignored)) {
            searchFolder(argument);
        } else {
            addFile(argument);
        }
    }

    [[nodiscard]] Descriptions read() {
        found_.station = TalIec61850Scl::readStation(paths_);
        judge();
        return std::move(found_);
    }

private:
    void refuse(std::string const& name, std::string const& reason) {
        found_.faults.push_back(
            fmt::format("{}: {}", name.empty() ? "''" : escapeText(name), reason));
    }

    void searchFolder(std::string const& folder) {
        FilesBelow const below = filesBelow(folder);
        for (auto const& closed : below.closed) {
            refuse(closed.path, closed.error.message());
        }
        bool isAny = !below.closed.empty();
        for (auto const& path : below.files) {
            if (isCalledDescription(path)) {
                addFile(path);
                isAny = true;
            }
        }
        if (!isAny) {
            refuse(folder, "no descriptions of a station in this folder");
        }
    }

    void addFile(std::string const& path) {
        // A pipe is not waited for.
        int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        struct stat status {};
        bool const isOpen = descriptor >= 0 && ::fstat(descriptor, &status) == 0;
        int const error = errno;
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        if (!isOpen) {
            refuse(path, std::generic_category().message(error));
        } else if (!S_ISREG(status.st_mode)) {
            refuse(path, "not a regular file");
        } else if (found_.files
                       .insert(FileIdentity{.device = status.st_dev, .inode = status.st_ino})
                       .second) {
            paths_.push_back(path);
        }
    }

    /// Files that are no description, or broken ones, are faults.
    void judge() {
        std::vector<FileVerdict> verdicts(paths_.size());
        for (Diagnostic const& diagnostic : found_.station.diagnostics) {
            FileVerdict& verdict = verdicts[diagnostic.place.file];
            if (diagnostic.code == DiagnosticCode::notScl) {
                verdict.isScl = false;
            } else if (diagnostic.code == DiagnosticCode::notXml) {
                verdict.endsAtLine = diagnostic.place.line;
            } else if (diagnostic.code == DiagnosticCode::unreadableFile) {
                verdict.unreadable = diagnostic.subject;
            }
        }
        for (auto const& block : found_.station.controlBlocks) {
            verdicts[block.place.file].hasControlBlock = true;
        }
        for (std::size_t number = 0; number < verdicts.size(); ++number) {
            FileVerdict const& verdict = verdicts[number];
            std::string const& path = paths_[number];
            found_.isAny = found_.isAny || verdict.isUsable();
            if (verdict.unreadable) {
                refuse(path, *verdict.unreadable);
            } else if (!TalIec61850Analysis::checkCapture(path).fault) {
                refuse(path, "a capture, not a description of a station");
            } else if (!verdict.isScl || (verdict.endsAtLine && !startsLikeXml(path))) {
                refuse(path, "not a description of a station (SCL)");
            } else if (verdict.endsAtLine) {
                refuse(path,
                       fmt::format("the XML is broken at line {}{}", *verdict.endsAtLine,
                                   verdict.hasControlBlock ? "; what comes before is used" : ""));
            }
        }
    }

    Descriptions found_;
    std::vector<std::string> paths_;
};

}  // namespace

Descriptions readDescriptions(std::vector<std::string> const& arguments) {
    DescriptionReader reader;
    for (auto const& argument : arguments) {
        reader.follow(argument);
    }
    return reader.read();
}

}  // namespace TalIec61850Tools
