# Where "cmake --install" puts things: by default where VANTOR_PYTHON imports from, and below any prefix that it is
# given in the same way, such as PREFIX/lib/python3.11/site-packages.

# An interpreter's folder for modules is PREFIX/lib/pythonX.Y/site-packages; dist-packages in Debian's.
if(VANTOR_PLATLIB MATCHES "^(.+)/(lib[^/]*/[^/]+/[^/]+)$")
    set(prefix ${CMAKE_MATCH_1})
    set(modules ${CMAKE_MATCH_2})
else()
    set(prefix ${VANTOR_PLATLIB})
    set(modules .)
endif()

# Unless somebody has chosen a prefix, it follows the interpreter, which may be another one than at the last time.
if(NOT DEFINED VANTOR_LAST_PREFIX)
    set(VANTOR_LAST_PREFIX /usr/local) # CMake's own default
endif()
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT OR CMAKE_INSTALL_PREFIX STREQUAL VANTOR_LAST_PREFIX)
    set(CMAKE_INSTALL_PREFIX ${prefix} CACHE PATH "Where cmake --install goes without --prefix" FORCE)
endif()
set(VANTOR_LAST_PREFIX ${prefix} CACHE INTERNAL "The prefix of the interpreter")

# Both below the prefix, unless they are absolute.
set(VANTOR_INSTALL_DIR "" CACHE STRING "Where the module and the package go; empty: as the interpreter has it")
set(VANTOR_LIBRARY_DIR "" CACHE STRING "Where libVantor.so goes; empty: beside the module")
if(NOT VANTOR_INSTALL_DIR)
    set(VANTOR_INSTALL_DIR ${modules})
endif()
if(NOT VANTOR_LIBRARY_DIR)
    set(VANTOR_LIBRARY_DIR ${VANTOR_INSTALL_DIR})
    set(VANTOR_RUNPATH "$ORIGIN")
else()
    cmake_path(ABSOLUTE_PATH VANTOR_LIBRARY_DIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE VANTOR_RUNPATH)
endif()

# The first line of an installation says for whom it is and where it goes.
install(
    CODE "set(place \"${VANTOR_INSTALL_DIR}\")
          cmake_path(ABSOLUTE_PATH place BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
          message(STATUS \"For Python ${VANTOR_PYTHON_VERSION} (${VANTOR_EXECUTABLE}): \$ENV{DESTDIR}\${place}\")"
    ALL_COMPONENTS)
