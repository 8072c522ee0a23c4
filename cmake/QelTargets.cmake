# How every library, program and test of the repository is built.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

if(NOT WIN32)
    # The libraries also go into the Calc add-in, which exports only its factory functions. They are built alike without it,
    # so turning QEL_OFFICE on rebuilds nothing.
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    set(CMAKE_CXX_VISIBILITY_PRESET hidden)
    set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
endif()

find_program(CCACHE ccache)
if(CCACHE)
    # ccache refuses precompiled headers unless it is told that their macros and times need no check of its own, and
    # keeps none that was configured in the same second.
    # It tells objects apart by the language of the compiler's messages, so all are made in one.
    set(sloppiness pch_defines,time_macros,include_file_mtime,include_file_ctime)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_SLOPPINESS=${sloppiness}" LANG=C.UTF-8 "${CCACHE}")
endif()

# What every target of the repository is compiled with: the warnings, the include root and fmt, which is everywhere. Linked privately, so that
# nobody who links a target inherits them.
add_library(qel_options INTERFACE)
target_include_directories(qel_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_link_libraries(qel_options INTERFACE fmt::fmt)
target_compile_options(qel_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports these inside the standard library's own inlined code.
    target_compile_options(qel_options INTERFACE -Wno-null-dereference -Wno-restrict -Wno-stringop-overflow
        -Wno-array-bounds -Wduplicated-cond -Wlogical-op)
endif()
if(WIN32)
    target_compile_options(qel_options INTERFACE -Wno-stringop-overread) # likewise
endif()
if(CMAKE_UNITY_BUILD)
    # Sources that are compiled together count as headers to GCC, which warns of what they keep to themselves.
    target_compile_options(qel_options INTERFACE -Wno-subobject-linkage)
endif()
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Sizes in a cube file have 64 bits. A file that 32-bit memory could not hold whole is refused before they are used.
    target_compile_options(qel_options INTERFACE -Wno-conversion -Wno-sign-conversion -Wno-narrowing)
endif()
# For a debugger, but with tests that do not take minutes.
string(REPLACE "-g" "-Og -g" CMAKE_CXX_FLAGS_DEBUG "${CMAKE_CXX_FLAGS_DEBUG}")
# The engine alone gains from more.
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

if(QEL_SANITIZE OR QEL_THREAD_SANITIZE OR QEL_FUZZ)
    # Instrumented code compiles slowly; this is fast enough to run, and its stack traces have lines.
    set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")
endif()
if(QEL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    # With the checks in between, GCC 12 takes variants that were moved from for ones that were never set.
    add_compile_options(-Wno-maybe-uninitialized)
endif()
if(QEL_THREAD_SANITIZE)
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -Wno-maybe-uninitialized)
    add_link_options(-fsanitize=thread)
    # ThreadSanitizer of GCC 12 finds no room for its shadow memory where the kernel spreads addresses over more bits.
    if(EXISTS /proc/sys/vm/mmap_rnd_bits)
        file(READ /proc/sys/vm/mmap_rnd_bits bits)
        if(bits GREATER 28)
            set(CMAKE_CROSSCOMPILING_EMULATOR setarch -R)
        endif()
    endif()
endif()
if(QEL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
    add_link_options(-fsanitize=address,undefined)
endif()

# What most sources include is parsed once for all of them: for libraries here, for test programs in tests/. Sources
# include what they use all the same; the fuzz preset and clang-tidy go without.
set(QEL_PRECOMPILED_HEADERS <algorithm> <array> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span>
    <string> <string_view> <utility> <vector> <fmt/format.h>)
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled.cpp" CONTENT "int main() {}\n")

# qel_precompiled_library(NAME): what the libraries of this folder and those below share, compiled with the folder's options.
macro(qel_precompiled_library name)
    add_library(${name} STATIC "${CMAKE_BINARY_DIR}/precompiled.cpp")
    target_link_libraries(${name} PRIVATE qel_options)
    target_precompile_headers(${name} PRIVATE ${QEL_PRECOMPILED_HEADERS})
    set(QEL_PRECOMPILED_LIBRARY ${name})
endmacro()
qel_precompiled_library(qel_precompiled)

# qel_library(NAME sources...): a folder's library.
function(qel_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PRIVATE qel_options)
    if(NOT QEL_PRECOMPILED_APART) # the folder has headers of its own, or other options
        target_precompile_headers(${name} REUSE_FROM ${QEL_PRECOMPILED_LIBRARY})
    endif()
endfunction()

# qel_program(NAME sources...): a program that lands in build/<preset>/bin.
function(qel_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE qel_options)
endfunction()

# qel_option_parser(sources...): main programs, whose time goes into compiling their option parser.
function(qel_option_parser)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O1)
endfunction()

# Every test has one of these labels, and "threads" besides if it runs threads:
#   quick    needs the build alone and takes a few seconds at most
#   slow     takes longer
#   office   starts LibreOffice
#   server   starts servers
#   windows  runs under Wine
add_custom_target(quick_tests)  # the programs of the quick tests
add_custom_target(thread_tests) # the programs of the tests with threads

# qel_test(NAME sources... [LABELS labels...] [SLOW names...]): a GoogleTest program whose cases ctest lists one by one.
# Without LABELS they are quick, but for those whose names begin as SLOW says; in the Windows builds all are windows.
function(qel_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "" "LABELS;SLOW")
    qel_program(${name} ${test_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main)
    target_precompile_headers(${name} REUSE_FROM qel_test_precompiled)
    if(WIN32) # Wine runs them, and is stopped only when all of them are done
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
            PROPERTIES TIMEOUT 300 FIXTURES_REQUIRED wine LABELS windows)
        return()
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 900)
    if(NOT test_LABELS)
        set(test_LABELS quick)
    endif()
    if(quick IN_LIST test_LABELS)
        add_dependencies(quick_tests ${name})
    endif()
    if(threads IN_LIST test_LABELS)
        add_dependencies(thread_tests ${name})
    endif()
    # gtest_discover_tests would take the second label for a property.
    set(labels_file "${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake")
    string(REPLACE quick slow slow_labels "${test_LABELS}")
    string(REPLACE ";" "|" slow_names "${test_SLOW}")
    file(CONFIGURE OUTPUT "${labels_file}" @ONLY CONTENT [[
set(others ${@name@_TESTS})
if(NOT "@slow_names@" STREQUAL "")
    set(slow ${@name@_TESTS})
    list(FILTER slow INCLUDE REGEX "^(@slow_names@)")
    list(FILTER others EXCLUDE REGEX "^(@slow_names@)") # a test would keep labels that it was given before
endif()
if(slow)
    set_tests_properties(${slow} PROPERTIES LABELS "@slow_labels@")
endif()
if(others)
    set_tests_properties(${others} PROPERTIES LABELS "@test_LABELS@")
endif()
unset(slow)
]])
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${labels_file}")
endfunction()

# qel_prefix_test(NAME FIXTURE sources...): a program that changes the Wine prefix (registry, windows, classes): its cases
# run one at a time. FIXTURE is what they need: "wine", or "registered_server" for the registered DLL.
function(qel_prefix_test name fixture)
    qel_program(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main)
    target_precompile_headers(${name} REUSE_FROM qel_test_precompiled)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
        PROPERTIES TIMEOUT 600 FIXTURES_REQUIRED ${fixture} RESOURCE_LOCK wine_prefix LABELS windows)
endfunction()
