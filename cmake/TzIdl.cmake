# Code generation from IDL. Both functions write into ${CMAKE_CURRENT_BINARY_DIR}/generated.
#
#   tz_omniidl(<target|variable> <idl> [INCLUDE_DIRS <dirs...>] [HEADERS <variable>])
#       CORBA stubs and skeletons with omniidl: <name>.hh and <name>SK.cc.
#   tz_fastddsgen(<target|variable> <idl> [HEADERS <variable>])
#       DDS topic types with fastddsgen: <name>.h/.cxx and <name>PubSubTypes.h/.cxx.
#
# Given a target, the generated sources are compiled into it and the directory is added
# to its public include path (build tree only). Given any other name, that variable is
# set to the generated sources and the caller adds them. HEADERS names a variable that
# receives the generated headers, for install().
# The IDL's own directory is searched for its #includes, then omniORB's standard IDL
# (corbaidl.idl and its kin); INCLUDE_DIRS adds more.

find_path(OMNIORB_IDL_DIR corbaidl.idl PATHS /usr/share/idl/omniORB /usr/local/share/idl/omniORB
          DOC "omniORB's standard IDL files (Debian package omniorb-idl)")

function(tz_idl_generated_dir out)
    set(dir ${CMAKE_CURRENT_BINARY_DIR}/generated)
    file(MAKE_DIRECTORY ${dir})
    set(${out} ${dir} PARENT_SCOPE)
endfunction()

# Hands the generated files to the target or the variable (in the caller's caller).
macro(tz_idl_deliver target_or_variable sources headers dir)
    # Generated code is not ours to warn about.
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS "-w")
    if(TARGET ${target_or_variable})
        target_sources(${target_or_variable} PRIVATE ${sources} ${headers})
        target_include_directories(${target_or_variable} PUBLIC $<BUILD_INTERFACE:${dir}>)
    else()
        set(${target_or_variable} ${sources} PARENT_SCOPE)
    endif()
    if(ARG_HEADERS)
        set(${ARG_HEADERS} ${headers} PARENT_SCOPE)
    endif()
endmacro()

function(tz_omniidl target_or_variable idl)
    cmake_parse_arguments(ARG "" "HEADERS" "INCLUDE_DIRS" ${ARGN})
    get_filename_component(idl ${idl} ABSOLUTE)
    get_filename_component(name ${idl} NAME_WE)
    get_filename_component(idl_dir ${idl} DIRECTORY)
    tz_idl_generated_dir(dir)

    set(include_flags -I${idl_dir})
    if(OMNIORB_IDL_DIR)
        list(APPEND include_flags -I${OMNIORB_IDL_DIR})
    endif()
    foreach(include_dir IN LISTS ARG_INCLUDE_DIRS)
        list(APPEND include_flags -I${include_dir})
    endforeach()

    set(header ${dir}/${name}.hh)
    set(source ${dir}/${name}SK.cc)
    add_custom_command(
        OUTPUT ${header} ${source}
        COMMAND ${OMNIIDL_EXECUTABLE} -bcxx -Wbh=.hh -Wbs=SK.cc ${include_flags} -C ${dir} ${idl}
        DEPENDS ${idl}
        COMMENT "omniidl ${name}.idl"
        VERBATIM)
    tz_idl_deliver(${target_or_variable} "${source}" "${header}" ${dir})
endfunction()

function(tz_fastddsgen target_or_variable idl)
    cmake_parse_arguments(ARG "" "HEADERS" "" ${ARGN})
    get_filename_component(idl ${idl} ABSOLUTE)
    get_filename_component(name ${idl} NAME_WE)
    tz_idl_generated_dir(dir)

    set(headers ${dir}/${name}.h ${dir}/${name}PubSubTypes.h)
    set(sources ${dir}/${name}.cxx ${dir}/${name}PubSubTypes.cxx)
    add_custom_command(
        OUTPUT ${headers} ${sources}
        COMMAND ${FASTDDSGEN_EXECUTABLE} -replace -d ${dir} ${idl}
        DEPENDS ${idl}
        COMMENT "fastddsgen ${name}.idl"
        VERBATIM)
    tz_idl_deliver(${target_or_variable} "${sources}" "${headers}" ${dir})
endfunction()
