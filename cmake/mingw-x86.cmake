# Windows, 32 bit: for the Excel that most offices still run.
set(QEL_MINGW i686-w64-mingw32)
set(QEL_WIDL_BITS --win32)
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
