# qel_unpackaged_library(NAME HEADER LIBRARY): finds a library whose Debian package has no CMake configuration, as the
# target NAME::NAME. For the find modules beside it; installed with the engine.
macro(qel_unpackaged_library name header library)
    find_path(${name}_INCLUDE_DIR ${header})
    find_library(${name}_LIBRARY ${library})
    include(FindPackageHandleStandardArgs)
    find_package_handle_standard_args(${name} REQUIRED_VARS ${name}_LIBRARY ${name}_INCLUDE_DIR)
    if(${name}_FOUND AND NOT TARGET ${name}::${name})
        add_library(${name}::${name} UNKNOWN IMPORTED)
        set_target_properties(${name}::${name} PROPERTIES
            IMPORTED_LOCATION "${${name}_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${${name}_INCLUDE_DIR}")
    endif()
    mark_as_advanced(${name}_INCLUDE_DIR ${name}_LIBRARY)
endmacro()
