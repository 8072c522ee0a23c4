# The libraries that the system's packages hold as headers only, for a cross compiler: /usr/include as a whole would
# bring in the build machine's C library, so links to the wanted headers are made in a folder of their own.

set(QEL_HEADERS "${CMAKE_BINARY_DIR}/include")
file(MAKE_DIRECTORY "${QEL_HEADERS}")
foreach(header fmt xxhash.h CLI nlohmann SimpleIni.h)
    find_path(found_${header} ${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH REQUIRED)
    file(CREATE_LINK "${found_${header}}/${header}" "${QEL_HEADERS}/${header}" SYMBOLIC)
endforeach()

add_library(fmt STATIC cmake/fmt.cpp)
add_library(fmt::fmt ALIAS fmt)
target_include_directories(fmt SYSTEM PUBLIC "${QEL_HEADERS}")

add_library(qel_xxhash INTERFACE)
target_include_directories(qel_xxhash SYSTEM INTERFACE "${QEL_HEADERS}")
target_compile_definitions(qel_xxhash INTERFACE XXH_INLINE_ALL)
add_library(XxHash::XxHash ALIAS qel_xxhash)

foreach(library CLI11::CLI11 nlohmann_json::nlohmann_json simpleini ODBC::ODBC Threads::Threads)
    add_library(${library} INTERFACE IMPORTED)
    target_include_directories(${library} SYSTEM INTERFACE "${QEL_HEADERS}")
endforeach()
target_link_libraries(ODBC::ODBC INTERFACE odbc32)
target_compile_definitions(simpleini INTERFACE SI_IMPLEMENTATION) # Debian's header leaves it to the package's library

include(SqliteForWindows)
include(LibrariesForWindows)

# Text in the system's wide form, and no headers or macros that nobody asked for.
add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
add_link_options(-Wl,--no-insert-timestamp) # the same sources give the same bytes
