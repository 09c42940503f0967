# The API reference, generated from the public headers with Doxygen: `cmake --build build
# --target docs` writes build/docs/api/html/index.html. The target exists only when
# Doxygen is installed, and no other target builds it.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    message(STATUS "Doxygen not found: no 'docs' target")
    return()
endif()

set(DOXYGEN_PROJECT_NAME "libtzuicomponents")
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_PROJECT_BRIEF "Touch-screen desktop components of the Orvanth test instrument")
set(DOXYGEN_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/docs/api)
set(DOXYGEN_FILE_PATTERNS *.h *.md)
set(DOXYGEN_RECURSIVE YES)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/docs/api-reference.md)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_EXTRACT_PRIVATE NO)
set(DOXYGEN_EXTRACT_STATIC YES)
set(DOXYGEN_HIDE_UNDOC_RELATIONS NO)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_STRIP_FROM_INC_PATH ${PROJECT_SOURCE_DIR}/Components/Source ${PROJECT_SOURCE_DIR}/Engine)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_QT_AUTOBRIEF YES)
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_WARN_IF_UNDOCUMENTED NO)
set(DOXYGEN_QUIET YES)
# The export macro and Qt's own markers mean nothing to a reader of the reference.
set(DOXYGEN_ENABLE_PREPROCESSING YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED "TZUICOMPONENTS_EXPORT=" "Q_OBJECT=" "Q_INVOKABLE=" "Q_ENUM(x)=" "Q_PROPERTY(x)=")

doxygen_add_docs(docs
    ${PROJECT_SOURCE_DIR}/docs/api-reference.md
    ${PROJECT_SOURCE_DIR}/Components/Source
    ${PROJECT_SOURCE_DIR}/Engine
    COMMENT "API reference into ${CMAKE_BINARY_DIR}/docs/api/html")
