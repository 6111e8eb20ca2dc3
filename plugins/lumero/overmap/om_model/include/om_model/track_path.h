#pragma once

#include <om_model/track.h>

namespace overmap {

/// A driven line of many GPS vertices.
class TrackPath : public Track
{
public:
    using Track::Track;
    ~TrackPath() override;
};

} // namespace overmap
