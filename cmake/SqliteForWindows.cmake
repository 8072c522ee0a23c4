# SQLite::SQLite3 for a cross compiler, from its source; fetched once for all build folders.

set(sqlite "${CMAKE_SOURCE_DIR}/build/sqlite")
if(NOT EXISTS "${sqlite}/sqlite3.c")
    execute_process(COMMAND "${CMAKE_SOURCE_DIR}/scripts/sqlite-source" "${sqlite}" RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "SQLite's source is missing; the lines above tell why.")
    endif()
endif()

enable_language(C)
if(CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE}")
endif()
add_library(qel_sqlite3 STATIC "${sqlite}/sqlite3.c")
add_library(SQLite::SQLite3 ALIAS qel_sqlite3)
target_include_directories(qel_sqlite3 SYSTEM PUBLIC "${sqlite}")
target_compile_definitions(qel_sqlite3 PRIVATE SQLITE_OMIT_LOAD_EXTENSION SQLITE_THREADSAFE=1)
target_compile_options(qel_sqlite3 PRIVATE -w -O1) # not our source; quick to build
