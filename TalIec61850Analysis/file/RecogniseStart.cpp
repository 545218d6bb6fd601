#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecogniseStart.hpp>

namespace TalIec61850Analysis::detail {

TalIec61850Parser::wire::CaptureKind recogniseStart(Descriptor const& file) {
    return TalIec61850Parser::wire::recogniseCapture([&](std::size_t fileOffset) {
        TalIec61850Parser::wire::Magic magic{};
        static_cast<void>(readAt(file, fileOffset, magic));
        return magic;
    });
}

}  // namespace TalIec61850Analysis::detail
