#include "tools/output/FileSet.hpp"

#include "tools/output/OutputError.hpp"
#include "tools/output/UnfinishedFile.hpp"

namespace TalIec61850Tools {

Output& FileSet::add(std::string const& path) { return files_.emplace_back(path); }

void FileSet::finish() {
    // A device that is full is noticed here, while no file has its name.
    for (Output& file : files_) {
        file.complete();
    }
    UnfinishedFile::Together const together;
    for (auto file = files_.begin(); file != files_.end(); ++file) {
        try {
            file->takeName();
        } catch (OutputError const&) {
            for (auto named = files_.begin(); named != file; ++named) {
                named->removeNamed();
            }
            throw;
        }
    }
}

}  // namespace TalIec61850Tools
