#include "ServedStatusFile.hpp"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

using Open = FILE*(char const*, char const*);

FILE* openServed(char const* symbol, char const* path, char const* mode) {
    if (path != nullptr && strcmp(path, "/proc/self/status") == 0) {
        char const* const served = getenv(tal::test::kStatusFileVariable);
        if (served != nullptr && *served != '\0') {
            path = served;
        }
    }
    return reinterpret_cast<Open*>(dlsym(RTLD_NEXT, symbol))(path, mode);
}

}  // namespace

// Stand before those of the C library, through which file streams open their files.
extern "C" {

__attribute__((visibility("default"))) FILE* fopen(char const* path, char const* mode) {
    return openServed("fopen", path, mode);
}

__attribute__((visibility("default"))) FILE* fopen64(char const* path, char const* mode) {
    return openServed("fopen64", path, mode);
}
}
