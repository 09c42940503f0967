# Installs the build into a fresh prefix, builds the consumer against it with
# find_package(TzUiComponents) and runs it.
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DCONSUMER_DIR=... -P CheckInstalledPackage.cmake
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGN}\n${output}")
    endif()
    set(last_output "${output}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/lib ${WORK_DIR}/consumer/tzconsumer)
if(NOT last_output MATCHES "consumer ok")
    message(FATAL_ERROR "consumer printed: ${last_output}")
endif()
message(STATUS "installed package builds and runs")
