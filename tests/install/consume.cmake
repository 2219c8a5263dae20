# Installs the build into an empty folder, looks at what is there, and builds and runs a project on top of it.

# Runs a command; its output is shown, and a failure ends the script.
function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(require_file path)
    if(NOT EXISTS ${SCRATCH}/tree/${path})
        message(FATAL_ERROR "not installed: ${path}")
    endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/tree)

require_file(bin/vireloce)
if(KIT)
    require_file(bin/vireloce-kit)
    require_file(share/man/man1/vireloce-kit.1)
    require_file(share/bash-completion/completions/vireloce-kit)
    require_file(share/vireloce/result.schema.json)
    require_file(share/vireloce/vireloce-sweep.sbatch)
    require_file(share/vireloce/vireloce-collect.sbatch)
    require_file(bin/vireloce-sweep-slurm)
    require_file(bin/vireloce-sweep-parallel)
endif()
require_file(share/man/man1/vireloce.1)
file(GLOB_RECURSE headers RELATIVE ${HEADERS} ${HEADERS}/*.h)
foreach(header IN LISTS headers)
    require_file(include/vireloce/${header})
endforeach()

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${SCRATCH}/build -G ${GENERATOR} -D CMAKE_PREFIX_PATH=${SCRATCH}/tree
    -D CMAKE_BUILD_TYPE=${BUILD_TYPE} -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_CXX_FLAGS=${FLAGS})
run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
run(${SCRATCH}/build/consumer ${EXAMPLES})
