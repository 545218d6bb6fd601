#include <TalIec61850Scl/read/DataSetReader.hpp>
#include <TalIec61850Scl/read/ReadNumber.hpp>
#include <array>

namespace TalIec61850Scl::detail {

namespace {

/// Steps of a path that are followed: no path of IEC 61850 has as many.
constexpr std::size_t kMostSteps = std::size_t{2} * kMostTypeLevels;

}  // namespace

DataSetReader::Entry::Entry(Element fcda) : element(fcda) {
    enum : std::size_t { kLdInst, kPrefix, kLnClass, kLnInst, kDoName, kDaName, kFc, kIx };
    constexpr std::array<std::string_view, 8> kNames{"ldInst", "prefix", "lnClass", "lnInst",
                                                     "doName", "daName", "fc",      "ix"};
    auto const attributes = fcda.attributes(kNames);
    ldInst = attributes.name(kLdInst);
    prefix = attributes.name(kPrefix);
    lnClass = attributes.name(kLnClass);
    lnInst = attributes.name(kLnInst);
    doName = attributes.name(kDoName);
    daName = attributes.name(kDaName);
    fc = attributes.name(kFc);
    ix = trimmed(attributes.name(kIx));
    for (std::size_t const required : {kLdInst, kLnClass, kFc}) {
        if (missing.empty() && !attributes.has(required)) {
            missing = kNames[required];
        }
    }
    node.reserve(ldInst.size() + prefix.size() + lnClass.size() + lnInst.size() + doName.size() +
                 daName.size() + 8);
    node.append(ldInst).append(1, '/').append(prefix).append(lnClass).append(lnInst);
}

std::string DataSetReader::Entry::reference() const {
    std::string reference = node;
    for (std::string_view const name : {doName, daName}) {
        if (!name.empty()) {
            reference.append(1, '.').append(name);
        }
    }
    return reference;
}

DataSetReader::DataSetReader(Document const& document, DiagnosticList& diagnostics,
                             NamedChildren& children)
    : document_(document),
      diagnostics_(diagnostics),
      types_(document, diagnostics),
      leaves_(types_, document, diagnostics),
      budget_(document.size()),
      walk_(types_, leaves_, children, budget_) {}

DataSet DataSetReader::read(Element element, LogicalNodes& nodes, std::string_view ied,
                            std::string reference) {
    DataSet dataSet;
    dataSet.ied = ied;
    dataSet.reference = std::move(reference);
    dataSet.place = document_.placeOf(element);
    bool isFull = false;
    for (Element const fcda : element.children("FCDA")) {
        isFull = isFull || !addEntry(Entry(fcda), nodes, dataSet.entries, dataSet);
        ++dataSet.entries;
    }
    if (isFull) {
        diagnostics_.add(DiagnosticCode::tooManyMembers, dataSet.place, dataSet.reference);
    }
    return dataSet;
}

bool DataSetReader::addEntry(Entry const& entry, LogicalNodes& nodes, std::uint32_t number,
                             DataSet& dataSet) {
    std::vector<DataSetMember>& members = dataSet.members;
    if (members.size() >= kMostMembers) {
        return false;
    }
    auto target = targetOf(entry, nodes);
    if (!target) {
        std::string reference = entry.reference();
        if (!budget_.take(sizeof(DataSetMember) + reference.size() + entry.fc.size())) {
            return false;
        }
        DataSetMember& member = members.emplace_back();
        member.path = {number};
        member.name = std::move(reference);
        member.fc = entry.fc;
        return true;
    }
    return walk_.list(target->from, target->place, target->constraint, target->constraintText,
                      number, std::move(target->name), target->text, members);
}

void DataSetReader::reject(Entry const& entry) {
    if (diagnostics_.takes(DiagnosticCode::badFcda)) {
        diagnostics_.add(DiagnosticCode::badFcda, document_.placeOf(entry.element),
                         entry.reference());
    }
}

std::optional<std::vector<DataSetReader::Step>> DataSetReader::stepsOf(Entry const& entry) {
    std::vector<Step> steps;
    steps.reserve(8);
    for (std::string_view rest : {entry.doName, entry.daName}) {
        while (!rest.empty()) {
            std::size_t const dot = rest.find('.');
            Step step{.name = rest.substr(0, dot), .index = std::nullopt};
            rest = dot == std::string_view::npos ? std::string_view{} : rest.substr(dot + 1);
            if (std::size_t const open = step.name.find('('); open != std::string_view::npos) {
                std::string_view const inside = step.name.substr(open + 1);
                step.index = inside.ends_with(')')
                                 ? readNumber<std::uint32_t>(inside.substr(0, inside.size() - 1))
                                 : std::nullopt;
                if (!step.index) {
                    return std::nullopt;
                }
                step.name = step.name.substr(0, open);
            }
            if (steps.size() >= kMostSteps) {
                return std::nullopt;
            }
            steps.push_back(step);
        }
    }
    return steps.empty() ? std::nullopt : std::optional(std::move(steps));
}

std::optional<DataSetReader::Target> DataSetReader::targetOf(Entry const& entry,
                                                             LogicalNodes& nodes) {
    if (!entry.missing.empty()) {
        if (diagnostics_.takes(DiagnosticCode::missingAttribute)) {
            diagnostics_.add(DiagnosticCode::missingAttribute, document_.placeOf(entry.element),
                             entry.missing);
        }
        return std::nullopt;
    }
    std::optional<std::uint32_t> index;
    if (!entry.ix.empty()) {
        index = readNumber<std::uint32_t>(entry.ix);
        if (!index) {
            diagnostics_.add(DiagnosticCode::badNumber, document_.placeOf(entry.element), entry.ix);
            return std::nullopt;
        }
    }
    Element const node = nodes.find({.ldInst = entry.ldInst,
                                     .prefix = entry.prefix,
                                     .lnClass = entry.lnClass,
                                     .inst = entry.lnInst});
    auto const constraint = constraintOf(entry.fc);
    auto const steps = stepsOf(entry);
    if (!node || !constraint || !steps) {
        reject(entry);
        return std::nullopt;
    }
    enum : std::size_t { kLnType, kDesc };
    auto const attributes = node.attributes(std::array<std::string_view, 2>{"lnType", "desc"});
    auto const type = types_.logicalNodeType(attributes.name(kLnType), entry.lnClass);
    if (!type) {
        diagnostics_.addOnce(DiagnosticCode::missingLNodeType, document_.placeOf(node),
                             attributes.name(kLnType));
        return std::nullopt;
    }
    Target target;
    target.from.instance = node;
    target.constraint = *constraint;
    target.constraintText = entry.fc;
    target.text = attributes.text(kDesc);
    target.name = entry.node;
    if (!follow(target, *type, *steps, index)) {
        reject(entry);
        return std::nullopt;
    }
    return target;
}

bool DataSetReader::follow(Target& target, TypeNumber type, std::vector<Step> const& steps,
                           std::optional<std::uint32_t> index) {
    std::optional<TypeNumber> next = type;
    target.place = target.from;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        Step const& step = steps[i];
        TypePart const* const part = next ? types_.part(*next, step.name) : nullptr;
        if (part == nullptr ||
            (part->constraint != kAnyConstraint && part->constraint != target.constraint)) {
            return false;
        }
        target.from = target.place;
        target.place = walk_.enter(target.from, *part);
        target.name.append(1, '.').append(part->name);
        if (part->count) {
            auto const element = step.index ? step.index : std::exchange(index, std::nullopt);
            bool const isLast = i + 1 == steps.size();
            if (element ? *element >= *part->count : !isLast) {
                return false;
            }
            if (element) {
                target.place = walk_.enterElement(target.from, target.place, *element);
                target.name.append("(").append(std::to_string(*element)).append(")");
            }
        } else if (step.index) {
            return false;
        }
        next = part->type;
    }
    TypePart const& last = *target.place.part;
    return !last.isObject || !last.type || leaves_.of(*last.type, target.constraint).leaves > 0;
}

}  // namespace TalIec61850Scl::detail
