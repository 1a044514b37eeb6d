# 64-bit Windows from Debian, with its package g++-mingw-w64-x86-64-posix (the threads of the standard library).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# The header-only JSON library is the build machine's; its headers alone may be seen, see there.
set(nlohmann_json_DIR ${CMAKE_CURRENT_LIST_DIR}/nlohmann_json)

# Windows keeps the stack aligned to 16 bytes, gcc spills 32-byte vectors to it as if it were 32: the assembler makes
# every aligned vector move an unaligned one, which costs nothing where the address is aligned.
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)

# Nothing of the compiler's own has to stand beside a program or a plug-in.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)
