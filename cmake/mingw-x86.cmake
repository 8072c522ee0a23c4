# Windows, 32 bit: for the Excel that most offices still run.
set(QEL_MINGW i686-w64-mingw32)
set(QEL_WIDL_BITS --win32)
# The older arithmetic unit keeps more digits than a double has; with this one, both bitnesses give the same numbers.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
