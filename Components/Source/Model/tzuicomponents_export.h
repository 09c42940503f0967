#ifndef TZUICOMPONENTS_EXPORT_H
#define TZUICOMPONENTS_EXPORT_H

#include <QtGlobal>

// The library is built with hidden visibility: only what carries this macro is exported.
#if defined(TZUICOMPONENTS_BUILDING)
#define TZUICOMPONENTS_EXPORT Q_DECL_EXPORT
#else
#define TZUICOMPONENTS_EXPORT Q_DECL_IMPORT
#endif

#endif
