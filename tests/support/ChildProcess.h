#pragma once

#include <functional>
#include <string>

namespace brimvault::tests {

/// Runs the work in a child process, so that what it changes of its process (limits, rights, mounts) ends with it.
/// Answers what the work answered: by custom what went wrong, and nothing when all is well. Call it while the test has
/// no other threads.
[[nodiscard]] std::string inChildProcess(const std::function<std::string()>& work);

/// What the work answers when the system does not let it try; a test is then skipped with this as its reason.
[[nodiscard]] std::string cannotTry(const std::string& reason);
[[nodiscard]] bool couldNotTry(const std::string& answer);

/// Becomes a user without rights of its own (number 65534) when the process has the superuser's. In a child process.
void becomeNobody();
/// Gives a folder and all in it to that user, when the process may.
void giveToNobody(const std::string& folder);
/// Mounts made after this are seen by this process alone. Empty, or why it cannot be. In a child process.
[[nodiscard]] std::string keepMountsPrivate();
/// Lets the process open no more than so many descriptors at a time beside those that it has. In a child process.
void limitDescriptors(unsigned count);

}  // namespace brimvault::tests

/// Runs the work in a child process; fails with what it answers, or skips when it could not try.
#define EXPECT_WELL_IN_CHILD(...)                                                        \
    do {                                                                                 \
        const std::string answerOfChild = brimvault::tests::inChildProcess(__VA_ARGS__); \
        if (brimvault::tests::couldNotTry(answerOfChild)) {                              \
            GTEST_SKIP() << answerOfChild;                                               \
        }                                                                                \
        EXPECT_EQ(answerOfChild, "");                                                    \
    } while (false)
