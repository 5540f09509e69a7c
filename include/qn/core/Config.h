// Build configuration shared by every public header: the export macro and the core module's
// C interface that the object model stands on.
#pragma once

#include <qncore/QNCore.h>

#if defined(_WIN32)
#if defined(QNCL_BUILDING)
#define QNCL_API __declspec(dllexport)
#else
#define QNCL_API __declspec(dllimport)
#endif
#else
#define QNCL_API __attribute__((visibility("default")))
#endif
