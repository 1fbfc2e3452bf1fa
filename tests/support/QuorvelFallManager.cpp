// Stands for the maker's library of notices, and counts how often it was started.

namespace {

int started = 0;

}  // namespace

extern "C" void QuorvelFallManager_start() { ++started; }
extern "C" int timesStarted() { return started; }
