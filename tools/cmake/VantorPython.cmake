# One extension module for one interpreter. FindPython knows one interpreter at a time; the tests want several.

# The sources of the module, gathered room by room and compiled once for each interpreter.
add_library(vantor_python_types INTERFACE)

# vantor_python_facts(PREFIX INTERPRETER): sets PREFIX_EXECUTABLE, _INCLUDE, _SUFFIX, _PLATLIB and _PYTHON_VERSION as
# the interpreter says. The version of a debug build ends in "-debug".
function(vantor_python_facts prefix interpreter)
    execute_process(
        COMMAND
            ${interpreter} -c
            "import sys, sysconfig as s; \
             print(sys.executable, s.get_path('include'), s.get_config_var('EXT_SUFFIX'), s.get_path('platlib'), \
             '%d.%d.%d' % sys.version_info[:3], '-debug' * hasattr(sys, 'gettotalrefcount'), sep=';')"
        OUTPUT_VARIABLE facts
        OUTPUT_STRIP_TRAILING_WHITESPACE
        RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "cannot run the interpreter '${interpreter}' (install python3, or set VANTOR_PYTHON)")
    endif()
    list(GET facts 0 executable)
    list(GET facts 1 include)
    list(GET facts 2 suffix)
    list(GET facts 3 platlib)
    list(GET facts 4 version)
    list(GET facts 5 kind)
    if(version VERSION_LESS 3.9)
        message(FATAL_ERROR "${executable} is Python ${version}; the module needs 3.9 or newer")
    endif()
    if(NOT EXISTS ${include}/Python.h)
        message(FATAL_ERROR "${include}/Python.h is missing: install the interpreter's headers (Debian: python3-dev)")
    endif()
    set(${prefix}_EXECUTABLE ${executable} PARENT_SCOPE)
    set(${prefix}_INCLUDE ${include} PARENT_SCOPE)
    set(${prefix}_SUFFIX ${suffix} PARENT_SCOPE)
    set(${prefix}_PLATLIB ${platlib} PARENT_SCOPE)
    set(${prefix}_PYTHON_VERSION ${version}${kind} PARENT_SCOPE)
endfunction()

# The interpreters, as prefixes of their facts: VANTOR for the one that is installed for, and one for each further
# version. VANTOR_TESTED has all of them, VANTOR_INTERPRETERS those that a module is built for: two with one suffix
# share a binary.
vantor_python_facts(VANTOR ${VANTOR_PYTHON})
set(VANTOR_TESTED VANTOR)
set(VANTOR_INTERPRETERS VANTOR)
set(known_versions ${VANTOR_PYTHON_VERSION})
set(known_suffixes ${VANTOR_SUFFIX})
foreach(interpreter IN LISTS VANTOR_ALSO_FOR)
    vantor_python_facts(VANTOR_OTHER ${interpreter})
    if(VANTOR_OTHER_PYTHON_VERSION IN_LIST known_versions)
        continue()
    endif()
    set(facts VANTOR_${VANTOR_OTHER_PYTHON_VERSION})
    vantor_python_facts(${facts} ${interpreter})
    list(APPEND VANTOR_TESTED ${facts})
    list(APPEND known_versions ${VANTOR_OTHER_PYTHON_VERSION})
    if(NOT VANTOR_OTHER_SUFFIX IN_LIST known_suffixes)
        list(APPEND VANTOR_INTERPRETERS ${facts})
        list(APPEND known_suffixes ${VANTOR_OTHER_SUFFIX})
    endif()
endforeach()

# vantor_python_module(TARGET NAME FACTS SOURCE...): the extension module NAME for the interpreter that FACTS describe.
function(vantor_python_module target name facts)
    add_library(${target} MODULE ${ARGN})
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name} SUFFIX ${${facts}_SUFFIX})
    set_target_properties(
        ${target}
        PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${VANTOR_IMPORT_DIR}
                   # RUNPATH, not RPATH: LD_LIBRARY_PATH goes before it, so that another maker's library can win.
                   # Already in the build folder: otherwise CMake adds that folder, and an empty entry, which means the
                   # current one.
                   INSTALL_RPATH "${VANTOR_RUNPATH}"
                   BUILD_WITH_INSTALL_RPATH ON)
    target_link_options(${target} PRIVATE -Wl,--enable-new-dtags)
    target_include_directories(${target} SYSTEM PRIVATE ${${facts}_INCLUDE})
    # Debian's headers of the debug build are links to those of the usual one, all but pyconfig.h; g++ would follow them
    # and take the wrong pyconfig.h.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-canonical-system-headers>)
endfunction()
