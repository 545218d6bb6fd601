// A stranger's program: indexes the capture it is given and counts what was found.

#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <atomic>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 1;
    }
    TalIec61850Parser::Db db;
    std::atomic<bool> const stop = false;
    TalIec61850Parser::PcapParser::parseFile(argv[1], db, TalIec61850Parser::Filter{}, stop, {});
    std::cout << "headers " << TALIEC61850PARSER_VERSION << ", library "
              << TalIec61850Parser::libraryVersion() << ": " << db.gooseProto.getGooseCount()
              << " GOOSE, " << db.svProto.getSvCount() << " SV\n";
}
