// Nothing but the precompiled headers of the companion, see CMakeLists.txt.
