#include <TalIec61850Scl/model/Diagnostic.hpp>

namespace TalIec61850Scl {

std::string_view nameOf(DiagnosticCode code) noexcept {
    switch (code) {
        case DiagnosticCode::notXml:
            return "NotXml";
        case DiagnosticCode::notScl:
            return "NotScl";
        case DiagnosticCode::missingLNodeType:
            return "MissingLNodeType";
        case DiagnosticCode::missingDOType:
            return "MissingDOType";
        case DiagnosticCode::missingDAType:
            return "MissingDAType";
        case DiagnosticCode::badFcda:
            return "BadFcda";
        case DiagnosticCode::badAddress:
            return "BadAddress";
        case DiagnosticCode::missingAttribute:
            return "MissingAttribute";
        case DiagnosticCode::badNumber:
            return "BadNumber";
        case DiagnosticCode::nestingTooDeep:
            return "NestingTooDeep";
        case DiagnosticCode::missingDataSet:
            return "MissingDataSet";
        case DiagnosticCode::missingControlBlock:
            return "MissingControlBlock";
        case DiagnosticCode::missingIed:
            return "MissingIed";
        case DiagnosticCode::duplicateControlBlock:
            return "DuplicateControlBlock";
        case DiagnosticCode::tooManyMembers:
            return "TooManyMembers";
        case DiagnosticCode::unknownBType:
            return "UnknownBType";
        case DiagnosticCode::duplicateType:
            return "DuplicateType";
        case DiagnosticCode::memoryLimit:
            return "MemoryLimit";
        case DiagnosticCode::unreadableFile:
            return "UnreadableFile";
    }
    return "";
}

}  // namespace TalIec61850Scl
