# Cross-building for 64-bit Windows with Debian's mingw-w64 (the posix thread model,
# which std::thread and std::mutex need). The libraries that Debian has no mingw build
# of come from CANTORELA_WINDOWS_PREFIX, which scripts/windows-deps.sh fills:
#   cmake -S . -B build-win -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
#         -DCANTORELA_WINDOWS_PREFIX=$PWD/build-win/deps/prefix
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# The prefix travels into the toolchain's own test projects too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CANTORELA_WINDOWS_PREFIX)
if(NOT CANTORELA_WINDOWS_PREFIX)
  set(CANTORELA_WINDOWS_PREFIX ${CMAKE_CURRENT_LIST_DIR}/../build-win/deps/prefix)
endif()

# Headers and libraries from the cross root and the prefix only; programs (and the
# toolkit's package files, which name no binaries for the target) from the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${CANTORELA_WINDOWS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
# Header- and source-only packages of the build machine serve the target as they are.
set(utf8cpp_DIR /usr/lib/x86_64-linux-gnu/cmake/utf8cpp CACHE PATH "")
file(GLOB CANTORELA_JUCE_CONFIG_DIRS /usr/lib/x86_64-linux-gnu/cmake/JUCE-*)
if(CANTORELA_JUCE_CONFIG_DIRS)
  list(GET CANTORELA_JUCE_CONFIG_DIRS 0 JUCE_DIR)
  set(JUCE_DIR ${JUCE_DIR} CACHE PATH "")
endif()
# pugixml's package files, from our own build of it, before the build machine's.
set(pugixml_DIR ${CANTORELA_WINDOWS_PREFIX}/lib/cmake/pugixml CACHE PATH "")
set(ENV{PKG_CONFIG_LIBDIR} ${CANTORELA_WINDOWS_PREFIX}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")

set(CMAKE_C_STANDARD_INCLUDE_DIRECTORIES ${CANTORELA_WINDOWS_PREFIX}/include)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${CANTORELA_WINDOWS_PREFIX}/include)
# Everything linked in, the compiler's own runtime too: the module and the programs
# need no DLL beside them.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -L${CANTORELA_WINDOWS_PREFIX}/lib")
endforeach()

# Tests and tools run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR wine)
