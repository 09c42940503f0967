#ifndef ORVANTH_ENGINESERVER_H
#define ORVANTH_ENGINESERVER_H

#include "ORB_wrapper_base.h"

namespace Orvanth {

/// What an engine program serves its objects with. Activation and binding live in the
/// ORB layer, where the user interface's own server finds them too.
using EngineServer = ORB_wrapper_base;

} // namespace Orvanth

#endif
