# Cross-build for 64-bit Windows with MinGW-w64 (posix threads), run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(QUILLMARK_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${QUILLMARK_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${QUILLMARK_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${QUILLMARK_MINGW_TRIPLET}-windres)
set(CMAKE_DLLTOOL ${QUILLMARK_MINGW_TRIPLET}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${QUILLMARK_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Everything static, the compiler's runtime and winpthread included, so the executables and the
# add-in run on a bare Windows (and under Wine) without any MinGW DLL beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Tests and other built programs run through Wine.
find_program(QUILLMARK_WINE NAMES wine wine64 PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
if(QUILLMARK_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${QUILLMARK_WINE})
endif()
