#include "scanners/PathsGenerator.h"

#include "platform/System.h"

namespace brimvault::scanners {

const PathsGenerator& PathsGenerator::GetInstance() {
    static const PathsGenerator instance;
    return instance;
}

std::filesystem::path PathsGenerator::findHomeDirectory() { return platform::homeFolder(); }

}  // namespace brimvault::scanners
