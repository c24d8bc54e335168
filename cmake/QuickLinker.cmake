# Test programs are made of tens of thousands of small sections, for which the GNU linker of this
# toolchain takes a minute a program and lld less than a second. The toolchain's compiler calls no
# other linker than its own, so that clang does it, with the toolchain's libraries. Where either is
# missing, the tests are linked as the programs are.
find_program(COFFRELUNE_CLANG clang++-14 NO_CMAKE_FIND_ROOT_PATH)
find_program(COFFRELUNE_LLD ld.lld HINTS /usr/lib/llvm-14/bin NO_CMAKE_FIND_ROOT_PATH)
if(COFFRELUNE_CLANG AND COFFRELUNE_LLD)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
    OUTPUT_VARIABLE library OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  cmake_path(GET library PARENT_PATH libraries)
  string(JOIN " " CMAKE_CXX_LINK_EXECUTABLE
    "${COFFRELUNE_CLANG} --target=x86_64-w64-mingw32 -fuse-ld=lld -L${libraries}"
    "<CMAKE_CXX_LINK_FLAGS> <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES> -lpthread")
endif()
