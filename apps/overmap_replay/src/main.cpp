// overmap-replay: replays recordings through a scene setup and writes where each object
// stood at the requested times.
#include <overmap_replay/replay_tool.h>

#include <uni_base/uni_log.h>

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    // The model's complaints go to standard error, one line each, away from the CSV.
    uni::initConsoleLogging(SEV_WARNING);
    const std::vector<std::string> args(argv + 1, argv + argc);
    return overmap_replay::runReplay(args, std::cout, std::cerr);
}
