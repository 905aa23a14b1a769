#pragma once
#include <QtCore/qglobal.h>

#if defined(QT5EXT_LIBRARY)
#  define QT5EXT_EXPORT Q_DECL_EXPORT
#else
#  define QT5EXT_EXPORT Q_DECL_IMPORT
#endif
