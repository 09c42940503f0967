# TZ_SANITIZE=address builds everything with AddressSanitizer and UBSan,
# TZ_SANITIZE=thread with ThreadSanitizer. The two cannot be combined.
# TZ_FUZZ builds everything with libFuzzer's coverage instrumentation, which only clang
# has, and with the sanitizers in TZ_FUZZ_SANITIZERS: AddressSanitizer and UBSan unless
# told otherwise; undefined behaviour then stops the run, so that the fuzzer keeps the
# input. "undefined" alone runs the widget targets several times as fast, for long runs
# whose corpus is then replayed under the address sanitizer, leak check included (clang
# 14 links no UBSan runtime beside the standalone leak sanitizer).
set(TZ_FUZZ_SANITIZERS "address,undefined" CACHE STRING "Sanitizers of the fuzz build (TZ_FUZZ)")
if(TZ_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "TZ_FUZZ needs clang (e.g. -DCMAKE_CXX_COMPILER=clang++-14), not ${CMAKE_CXX_COMPILER_ID}")
    endif()
    if(NOT TZ_SANITIZE STREQUAL "")
        message(FATAL_ERROR "TZ_FUZZ brings its own sanitizers; leave TZ_SANITIZE empty")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link,${TZ_FUZZ_SANITIZERS} -fno-sanitize-recover=undefined
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TZ_FUZZ_SANITIZERS})
endif()
if(TZ_SANITIZE STREQUAL "address")
    # Undefined behaviour stops the program, so that a report fails its test.
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(TZ_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(NOT TZ_SANITIZE STREQUAL "")
    message(FATAL_ERROR "TZ_SANITIZE must be empty, 'address' or 'thread', not '${TZ_SANITIZE}'")
endif()
