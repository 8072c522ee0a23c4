# XxHash::XxHash: the xxHash library (XXH3).
include("${CMAKE_CURRENT_LIST_DIR}/UnpackagedLibrary.cmake")
qel_unpackaged_library(XxHash xxhash.h xxhash)
