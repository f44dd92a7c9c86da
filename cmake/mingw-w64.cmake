# Cross-building for Windows by Debian's mingw-w64 compilers, those with the C++ library's threads.
# What is built runs by itself: nothing is linked that would have to be brought along.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT -s)

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# What CTest starts such programs with, and those whose windows are on no display.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_SOURCE_DIR}/scripts/run-windows-program
  ${CMAKE_BINARY_DIR}/wine)
set(QUILLMERE_UNSEEN_EMULATOR ${CMAKE_SOURCE_DIR}/scripts/run-windows-program --unseen
  ${CMAKE_BINARY_DIR}/wine-unseen)
