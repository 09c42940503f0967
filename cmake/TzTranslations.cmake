# Translations: one .ts file per language beside the sources, compiled to .qm files at
# build time and into the program or library as a resource.
find_package(Qt5 5.15 REQUIRED COMPONENTS LinguistTools)

# tz_add_translations(TARGET QM_VARIABLE TS_FILE...)
# Compiles each .ts file to a .qm file and TARGET's resources hold them under
# ":/translations/"; QM_VARIABLE receives the .qm paths, for install().
function(tz_add_translations target qm_variable)
    qt5_add_translation(qm_files ${ARGN})
    set(entries "")
    foreach(qm ${qm_files})
        get_filename_component(name ${qm} NAME)
        string(APPEND entries "        <file alias=\"${name}\">${qm}</file>\n")
    endforeach()
    string(MAKE_C_IDENTIFIER ${target} resource_name)
    set(qrc ${CMAKE_CURRENT_BINARY_DIR}/${resource_name}_translations.qrc)
    file(GENERATE OUTPUT ${qrc} CONTENT
        "<!DOCTYPE RCC><RCC version=\"1.0\">\n    <qresource prefix=\"/translations\">\n${entries}    </qresource>\n</RCC>\n")
    # Not through AUTORCC: the .qm files are made by this build, and the rule below
    # depends on them.
    set(rcc_source ${CMAKE_CURRENT_BINARY_DIR}/qrc_${resource_name}_translations.cpp)
    add_custom_command(OUTPUT ${rcc_source}
        COMMAND Qt5::rcc --name ${resource_name}_translations --output ${rcc_source} ${qrc}
        DEPENDS ${qm_files} ${qrc}
        COMMENT "Compiling the translations of ${target} into its resources"
        VERBATIM)
    set_source_files_properties(${rcc_source} PROPERTIES SKIP_AUTOGEN ON)
    target_sources(${target} PRIVATE ${rcc_source})
    set(${qm_variable} ${qm_files} PARENT_SCOPE)
endfunction()

# tz_update_translations(NAME TS_FILE SOURCE_DIR...): a target NAME that brings TS_FILE
# up to date with the texts marked for translation under the source folders (lupdate);
# a translator then fills in what is new.
function(tz_update_translations name ts_file)
    add_custom_target(${name}
        COMMAND Qt5::lupdate -no-obsolete -locations none -recursive ${ARGN} -ts ${ts_file}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
        COMMENT "Updating ${ts_file}"
        VERBATIM)
endfunction()
