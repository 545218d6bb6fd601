// A stranger's program that was not linked with the library: opens it at run time and asks it for
// its version.

#include <dlfcn.h>

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 1;
    }
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }
    void* const symbol = dlsym(library, "_ZN17TalIec61850Parser14libraryVersionEv");
    if (symbol == nullptr) {
        std::cerr << dlerror() << "\n";
        return 1;
    }
    std::cout << reinterpret_cast<char const* (*)()>(symbol)() << "\n";
    dlclose(library);
    if (dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr) {
        std::cerr << argv[1] << " stays loaded\n";
        return 1;
    }
}
