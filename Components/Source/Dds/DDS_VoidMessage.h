#ifndef ORVANTH_DDS_VOIDMESSAGE_H
#define ORVANTH_DDS_VOIDMESSAGE_H

namespace Orvanth {

/// Payload of a topic whose samples carry nothing worth reading: the arrival of a
/// sample is the event (lock changes of an engine attribute).
struct DDS_VoidMessage
{
};

} // namespace Orvanth

#endif
