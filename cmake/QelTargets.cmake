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
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

add_library(qel_options INTERFACE)
target_include_directories(qel_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(qel_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports null dereferences and overlapping copies inside the standard library's own inlined code.
    target_compile_options(qel_options INTERFACE -Wno-null-dereference -Wno-restrict -Wduplicated-cond -Wlogical-op)
endif()
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Sizes in a cube file have 64 bits. A file that 32-bit memory could not hold whole is refused before they are used.
    target_compile_options(qel_options INTERFACE -Wno-conversion -Wno-sign-conversion -Wno-narrowing)
endif()
# The scans over fact columns rely on the vectoriser, which GCC 12 runs in full only at this level.
string(REPLACE "-O2" "-O3" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

if(QEL_SANITIZE OR QEL_FUZZ)
    # Instrumented code compiles slowly; this is fast enough to run, and its stack traces have lines.
    set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")
endif()
if(QEL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    # With the checks in between, GCC 12 takes variants that were moved from for ones that were never set.
    add_compile_options(-Wno-maybe-uninitialized)
endif()
if(QEL_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
    add_link_options(-fsanitize=address,undefined)
endif()

# qel_library(NAME sources...): a folder's library, with the house's warnings and include root.
function(qel_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC qel_options)
endfunction()

# qel_program(NAME sources...): a program that lands in build/<preset>/bin.
function(qel_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE qel_options)
endfunction()

# qel_test(NAME sources...): a GoogleTest program whose cases ctest lists one by one.
function(qel_test name)
    qel_program(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main)
    if(WIN32) # Wine runs them, and is stopped only when all of them are done
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
            PROPERTIES TIMEOUT 300 FIXTURES_REQUIRED wine)
    else()
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
    endif()
endfunction()
