#include "platform/System.h"

#include <system_error>
#include <utility>

namespace brimvault::platform {

namespace {

const System*& substitute() {
    static const System* current = nullptr;
    return current;
}

}  // namespace

const System& system() {
    static const System real = realSystem();
    return substitute() == nullptr ? real : *substitute();
}

std::filesystem::path homeFolder() {
    const auto recorded = system().recordedHomeFolder();
    const auto home = recorded ? *recorded : std::filesystem::path("/Users") / system().userName();
    std::error_code unresolved;
    auto resolved = std::filesystem::canonical(home, unresolved);
    return unresolved ? home.lexically_normal() : resolved;
}

std::filesystem::path systemRoot() {
    const std::filesystem::path trial = system().environmentVariable("BRIMVAULT_TRIAL_ROOT");
    return trial.is_absolute() ? trial : "/";
}

SubstituteSystem::SubstituteSystem(System system)
    : system_(std::move(system)), before_(std::exchange(substitute(), &system_)) {}

SubstituteSystem::~SubstituteSystem() { substitute() = before_; }

}  // namespace brimvault::platform
