# Compiles through ccache where it is installed, so that nothing is compiled twice, in another clone
# either. The presets ask for it; without ccache the compiler is called as ever. A launcher that the
# user or the environment has chosen stays.
#
# It is a script, so that who compiles for this build elsewhere, as the package's tests do, only
# needs its path. Paths below the source folder are hashed relative to the folder of the build, and
# precompiled headers by the content of what they include, since compilers write paths into them: a
# clone in another folder finds what this one has compiled.

option(TAL_COMPILER_CACHE "Compile through ccache where it is installed" OFF)

if(TAL_COMPILER_CACHE)
  find_program(TAL_CCACHE ccache)
endif()
if(TAL_COMPILER_CACHE AND TAL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${PROJECT_BINARY_DIR}/cached-compiler)
  file(CONFIGURE OUTPUT ${CMAKE_CXX_COMPILER_LAUNCHER} CONTENT [[
#!/bin/sh
export CCACHE_BASEDIR="${CCACHE_BASEDIR:-@PROJECT_SOURCE_DIR@}" CCACHE_NOHASHDIR=1
export CCACHE_SLOPPINESS=pch_defines,time_macros,locale,include_file_mtime,include_file_ctime
export CCACHE_PCH_EXTSUM=true
case " $* " in
    *" -x c++-header "*) ;;
    *)
        # Clang is also told the header's name, which ccache takes as it is.
        if [ "$PWD" = "@PROJECT_BINARY_DIR@" ]; then
            for argument in "$@"; do
                shift
                case "$argument" in
                    "$PWD"/*.hxx) set -- "$@" "${argument#"$PWD"/}" ;;
                    *) set -- "$@" "$argument" ;;
                esac
            done
        fi
        exec "@TAL_CCACHE@" "$@"
        ;;
esac
"@TAL_CCACHE@" "$@" || exit
# A precompiled header: its checksum goes beside it, for ccache.
while [ $# -gt 1 ]; do
    case "$1" in
        -o) header=$2 ;;
        -MF) included=$2 ;;
    esac
    shift
done
sed -e 's/^[^ ]*://' -e 's/\\$//' "$included" | xargs cat |
    sed "s#$CCACHE_BASEDIR##g" | sha256sum >"$header.sum"
]] @ONLY)
  file(CHMOD ${CMAKE_CXX_COMPILER_LAUNCHER} PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  # Sources that are compiled together are included by their whole paths, which assertions print: without
  # this, each clone would have texts of its own.
  add_compile_options(-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  # What ccache asks for where headers are precompiled.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  endif()
endif()
