# Installs the build into a fresh prefix, for the examples to build against with
# find_package(TzUiComponents).
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -P CheckInstalledPackage.cmake
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "install failed:\n${output}")
endif()
foreach(file lib/cmake/TzUiComponents/TzUiComponentsConfig.cmake)
    if(NOT EXISTS ${WORK_DIR}/prefix/${file})
        message(FATAL_ERROR "the installed package lacks ${file}")
    endif()
endforeach()
