#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecogniseStart.hpp>

namespace TalIec61850Analysis::detail {

TalIec61850Parser::wire::CaptureKind recogniseStart(Descriptor const& file) {
    namespace wire = TalIec61850Parser::wire;
    wire::Magic magic{};
    static_cast<void>(readAt(file, 0, magic));
    return {.variant = wire::findVariant(magic),
            .isNextGeneration = magic == wire::kNextGenerationMagic};
}

}  // namespace TalIec61850Analysis::detail
