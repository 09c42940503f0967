#ifndef ORVANTH_SERIALIZESUBSCRIBERDESTRUCTIONMUTEX_H
#define ORVANTH_SERIALIZESUBSCRIBERDESTRUCTIONMUTEX_H

#include "tzuicomponents_export.h"

#include <boost/thread/mutex.hpp>

namespace Orvanth {

/// Held for the whole teardown of every typed subscriber of this library, so that two
/// subscribers never delete their DDS entities at the same time.
extern TZUICOMPONENTS_EXPORT boost::mutex SerializeSubscriberDestructionMutex;

} // namespace Orvanth

#endif
