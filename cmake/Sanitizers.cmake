# TZ_SANITIZE=address builds everything with AddressSanitizer and UBSan,
# TZ_SANITIZE=thread with ThreadSanitizer. The two cannot be combined.
if(TZ_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(TZ_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(NOT TZ_SANITIZE STREQUAL "")
    message(FATAL_ERROR "TZ_SANITIZE must be empty, 'address' or 'thread', not '${TZ_SANITIZE}'")
endif()
