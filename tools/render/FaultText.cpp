#include "tools/render/FaultText.hpp"

namespace TalIec61850Tools {

std::string_view toText(FaultKind kind) {
    switch (kind) {
        case FaultKind::headerCut:
            return "the frame ends inside its header";
        case FaultKind::notThere:
            return "the element that should begin here does not";
        case FaultKind::pastCapture:
            return "runs past the captured octets";
        case FaultKind::pastParent:
            return "runs past the element it is in";
        case FaultKind::indefiniteLength:
            return "has a length in the indefinite form";
        case FaultKind::longLength:
            return "has a length of more than four octets";
        case FaultKind::longIdentifier:
            return "has an identifier of several octets";
        case FaultKind::tooDeep:
            return "is nested too deep";
        case FaultKind::repeated:
            return "occurs again";
        case FaultKind::wrongLength:
            return "has a length that does not fit its kind";
        case FaultKind::wrongContent:
            return "has a content that does not fit its kind";
        case FaultKind::tooWide:
            return "takes more than 64 bits";
        case FaultKind::tooLong:
            return "the frame is too long to be read any further";
        case FaultKind::negative:
            return "is negative";
    }
    return "";
}

}  // namespace TalIec61850Tools
