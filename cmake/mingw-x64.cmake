# Windows, 64 bit. The -posix compilers have std::thread; everything is linked in, so that the server needs no DLL
# but the system's.
set(QEL_MINGW x86_64-w64-mingw32)
set(QEL_WIDL_BITS --win64)
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
