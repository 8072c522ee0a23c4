# LibCsv::LibCsv: the CSV reader libcsv.
include("${CMAKE_CURRENT_LIST_DIR}/UnpackagedLibrary.cmake")
qel_unpackaged_library(LibCsv csv.h csv)
