#include "SerializeSubscriberDestructionMutex.h"

namespace Orvanth {

boost::mutex SerializeSubscriberDestructionMutex;

} // namespace Orvanth
