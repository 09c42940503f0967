# Configures and builds the examples against an install prefix, from scratch.
#   cmake -DPREFIX=... -DSOURCE_DIR=... -DBINARY_DIR=... -P BuildExamples.cmake
file(REMOVE_RECURSE ${BINARY_DIR})

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGN}\n${output}")
    endif()
endfunction()

# Only the prefix: an example must find nothing of the source or build tree.
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${BINARY_DIR} -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${BINARY_DIR} --parallel 2)
message(STATUS "${SOURCE_DIR} builds against ${PREFIX}")
