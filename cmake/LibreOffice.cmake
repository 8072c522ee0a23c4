# LibreOffice's SDK: what a UNO component is generated, compiled and linked with.

find_path(QEL_OFFICE_SDK bin/cppumaker PATHS /usr/lib/libreoffice/sdk REQUIRED NO_DEFAULT_PATH)
cmake_path(GET QEL_OFFICE_SDK PARENT_PATH office)
set(QEL_OFFICE_PROGRAM "${office}/program")
find_path(QEL_OFFICE_INCLUDE cppuhelper/factory.hxx PATHS /usr/include/libreoffice REQUIRED NO_DEFAULT_PATH)
set(QEL_OFFICE_TYPES "${QEL_OFFICE_PROGRAM}/types.rdb" "${QEL_OFFICE_PROGRAM}/types/offapi.rdb")
# The Python that has the office's bindings; it need not be the first one on the path.
find_program(QEL_OFFICE_PYTHON python3 PATHS /usr/bin REQUIRED NO_DEFAULT_PATH)

# The C++ headers of the office's own types, made once in a build folder.
set(qel_office_headers "${CMAKE_BINARY_DIR}/office-headers")
add_custom_command(
    OUTPUT "${qel_office_headers}/made"
    COMMAND "${QEL_OFFICE_SDK}/bin/cppumaker" "-O${qel_office_headers}" ${QEL_OFFICE_TYPES}
    COMMAND "${CMAKE_COMMAND}" -E touch "${qel_office_headers}/made"
    DEPENDS ${QEL_OFFICE_TYPES}
    COMMENT "Making the headers of LibreOffice's types")
add_custom_target(qel_office_types DEPENDS "${qel_office_headers}/made")

add_library(qel_office_sdk INTERFACE)
add_dependencies(qel_office_sdk qel_office_types)
target_include_directories(qel_office_sdk SYSTEM INTERFACE "${QEL_OFFICE_INCLUDE}" "${qel_office_headers}")
target_compile_definitions(qel_office_sdk INTERFACE LINUX UNX CPPU_ENV=gcc3)
foreach(library uno_cppuhelpergcc3 uno_cppu uno_salhelpergcc3 uno_sal)
    target_link_libraries(qel_office_sdk INTERFACE "${QEL_OFFICE_SDK}/lib/lib${library}.so")
endforeach()
