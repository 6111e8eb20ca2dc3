#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace overmap_replay {

/// Exit codes of the tool.
enum ReplayExit : int
{
    EXIT_OK = 0,
    EXIT_FAILED = 1, ///< unreadable input, unknown channel, empty recording, unwritable output
    EXIT_USAGE = 2   ///< arguments that make no sense
};

/// The whole tool: reads the recordings and the setup, replays, writes. CSV rows go to
/// @p out unless --out names a file; an error is one line "overmap-replay: ..." on @p err.
int runReplay(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace overmap_replay
