#include "index/Tshark.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "support/Process.hpp"

namespace TalTest {
namespace {

TsharkFields fieldsOf(std::string const& line, std::vector<std::string> const& fieldNames) {
    TsharkFields fields;
    std::size_t start = 0;
    for (std::string const& name : fieldNames) {
        std::size_t const end = std::min(line.find('\t', start), line.size());
        fields[name] = line.substr(start, end - start);
        start = std::min(end + 1, line.size());
    }
    return fields;
}

}  // namespace

std::optional<std::string> tsharkProgram() {
    char const* const path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string program = folder + "/tshark";
        if (::access(program.c_str(), X_OK) == 0) return program;
    }
    return std::nullopt;
}

std::vector<TsharkFields> dissect(std::string const& program, std::string const& path,
                                  std::vector<std::string> const& fieldNames, Occurrence occurrence,
                                  std::vector<std::string> const& preferences) {
    std::vector<std::string> command = {program, "-n", "-r", path, "-Y", "goose||sv"};
    for (std::string const& preference : preferences)
        command.insert(command.end(), {"-o", preference});
    command.insert(command.end(), {"-T", "fields", "-E", "aggregator=|", "-E"});
    command.emplace_back(occurrence == Occurrence::last ? "occurrence=l" : "occurrence=a");
    for (std::string const& name : fieldNames) command.insert(command.end(), {"-e", name});
    ProcessResult const result = run(command, {{"LC_ALL", "C"}});
    std::vector<TsharkFields> frames;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) frames.push_back(fieldsOf(line, fieldNames));
    return frames;
}

std::vector<std::string> separated(std::string const& field) {
    std::vector<std::string> occurrences;
    std::istringstream parts(field);
    for (std::string part; std::getline(parts, part, '|');) occurrences.push_back(part);
    return occurrences;
}

std::optional<std::uint64_t> number(std::string const& field) {
    if (field.empty()) return std::nullopt;
    return std::stoull(field, nullptr, 0);
}

}  // namespace TalTest
