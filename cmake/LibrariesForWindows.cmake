# Libraries that a cross compiler builds from the sources of Debian's packages; fetched once for all build folders.

set(sources "${CMAKE_SOURCE_DIR}/build/libraries")
if(NOT EXISTS "${sources}/libcsv/libcsv.c" OR NOT EXISTS "${sources}/expat/expat/lib/xmlparse.c" OR
        NOT EXISTS "${sources}/pugixml/src/pugixml.cpp" OR NOT EXISTS "${sources}/zlib/inflate.c")
    execute_process(COMMAND "${CMAKE_SOURCE_DIR}/scripts/library-source" "${sources}" RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "Sources of libraries are missing; the lines above tell why.")
    endif()
endif()

# qel_library_from_source(NAME TARGET FOLDER sources...): a library whose headers are in the folder of its sources.
function(qel_library_from_source name target folder)
    list(TRANSFORM ARGN PREPEND "${folder}/")
    add_library(${name} STATIC EXCLUDE_FROM_ALL ${ARGN})
    add_library(${target} ALIAS ${name})
    target_include_directories(${name} SYSTEM PUBLIC "${folder}")
    target_compile_options(${name} PRIVATE -w) # not our source
    set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
endfunction()

qel_library_from_source(qel_libcsv LibCsv::LibCsv "${sources}/libcsv" libcsv.c)
qel_library_from_source(qel_pugixml pugixml::pugixml "${sources}/pugixml/src" pugixml.cpp)
qel_library_from_source(qel_zlib ZLIB::ZLIB "${sources}/zlib"
    adler32.c crc32.c inffast.c inflate.c inftrees.c zutil.c)
qel_library_from_source(qel_expat EXPAT::EXPAT "${sources}/expat/expat/lib" xmlparse.c xmlrole.c xmltok.c)
set(expat_config "${CMAKE_BINARY_DIR}/expat-config")
file(CONFIGURE OUTPUT "${expat_config}/expat_config.h" CONTENT [[
#define BYTEORDER 1234
#define XML_CONTEXT_BYTES 1024
#define XML_DTD 1
#define XML_NS 1
]])
target_include_directories(qel_expat PRIVATE "${expat_config}")
target_compile_definitions(qel_expat PUBLIC XML_STATIC)
