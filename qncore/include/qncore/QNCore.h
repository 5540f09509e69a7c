/* The whole C interface of qncore6, the platform layer under qncl6. */
#ifndef QNCORE_QNCORE_H
#define QNCORE_QNCORE_H

#include "QNComponent.h"
#include "QNEncoding.h"
#include "QNError.h"
#include "QNFile.h"
#include "QNIpc.h"
#include "QNPath.h"
#include "QNSync.h"
#include "QNThread.h"
#include "QNTime.h"
#include "QNTypes.h"
#include "QNUnknown.h"
#include "QNWideText.h"

#endif
