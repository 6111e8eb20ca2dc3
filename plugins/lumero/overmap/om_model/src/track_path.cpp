#include <om_model/track_path.h>

namespace overmap {

TrackPath::~TrackPath() = default;

} // namespace overmap
