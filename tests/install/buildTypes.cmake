# Configures without a build type, with one in the environment or in the cache, for many of them, and as a part of
# another project.

# Configures a folder afresh and compares the build type that comes of it.
function(require_type want folder generator)
    execute_process(COMMAND ${CMAKE_COMMAND} --fresh -S ${folder} -B ${SCRATCH}/build -G ${generator}
            -D CMAKE_CXX_COMPILER=${COMPILER} -D VIRELOCE_DEVELOPER=OFF ${ARGN}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    load_cache(${SCRATCH}/build READ_WITH_PREFIX "" CMAKE_BUILD_TYPE)
    if(NOT "${CMAKE_BUILD_TYPE}" STREQUAL want)
        message(FATAL_ERROR "the build type is '${CMAKE_BUILD_TYPE}', not '${want}': ${generator} ${ARGN} in ${folder}")
    endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
file(WRITE ${SCRATCH}/outer/CMakeLists.txt
    "cmake_minimum_required(VERSION 3.21)\nproject(outer LANGUAGES NONE)\nadd_subdirectory(${SOURCE} vireloce)\n")

set(ENV{CMAKE_BUILD_TYPE} Debug)
require_type(Debug ${SOURCE} Ninja)
set(ENV{CMAKE_BUILD_TYPE})
require_type(Release ${SOURCE} Ninja)
require_type(Debug ${SOURCE} Ninja -D CMAKE_BUILD_TYPE=Debug)
require_type("" ${SOURCE} Ninja -D CMAKE_BUILD_TYPE=)
require_type("" ${SOURCE} "Ninja Multi-Config")
require_type("" ${SCRATCH}/outer Ninja)
