# The compiler cache and the linker: what keeps a build of the whole tree fast.

# The compiler cache serves every clone of the tree, wherever it lies: paths
# under the source tree reach the compiler relative to the build directory
# (the cache's base directory), and the working directory is left out of the
# key. A second clone of the same commit thus compiles from the cache. Debug
# information of an object from the cache names the directory of the clone
# that first compiled it.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(QUILLET_CCACHE_LAUNCHER env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
  set(CMAKE_C_COMPILER_LAUNCHER ${QUILLET_CCACHE_LAUNCHER})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QUILLET_CCACHE_LAUNCHER})
endif()

# A fast linker when the machine has one: mold, else lld, else the default.
include(CheckLinkerFlag)
foreach(linker mold lld)
  check_linker_flag(CXX -fuse-ld=${linker} QUILLET_LINKER_${linker})
  if(QUILLET_LINKER_${linker})
    add_link_options(-fuse-ld=${linker})
    break()
  endif()
endforeach()
