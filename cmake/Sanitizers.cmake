# TZ_SANITIZE=address builds everything with AddressSanitizer and UBSan,
# TZ_SANITIZE=thread with ThreadSanitizer. The two cannot be combined.
# TZ_FUZZ builds everything with AddressSanitizer and UBSan and with libFuzzer's coverage
# instrumentation, which only clang has; undefined behaviour then stops the run, so that
# the fuzzer keeps the input.
if(TZ_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "TZ_FUZZ needs clang (e.g. -DCMAKE_CXX_COMPILER=clang++-14), not ${CMAKE_CXX_COMPILER_ID}")
    endif()
    if(NOT TZ_SANITIZE STREQUAL "")
        message(FATAL_ERROR "TZ_FUZZ brings its own sanitizers; leave TZ_SANITIZE empty")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(TZ_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(TZ_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(NOT TZ_SANITIZE STREQUAL "")
    message(FATAL_ERROR "TZ_SANITIZE must be empty, 'address' or 'thread', not '${TZ_SANITIZE}'")
endif()
