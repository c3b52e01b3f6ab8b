#include "Ashview/App/InstanceLock.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ashview {
namespace {

/// Asks in a forked child, as a second process would, and returns its answer.
bool answerOfAnotherProcess(const std::filesystem::path& folder) {
    pid_t child = ::fork();
    if (child == 0) {
        std::ostringstream errors;
        ::_exit(InstanceLock::anotherCopyIsRunning(folder, errors) ? 1 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

TEST(InstanceLock, OneCopyPerDataFolder) {
    TempFolder temp;
    std::filesystem::path folder = temp.path() / "made" / "on demand";
    std::ostringstream errors;
    EXPECT_FALSE(InstanceLock::anotherCopyIsRunning(folder, errors));
    EXPECT_EQ(errors.str(), "");

    struct stat info {};
    ASSERT_EQ(::stat((folder / ".drabwise.lock").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);

    // A program started from here does not inherit the lock: it lists where
    // its open descriptors lead.
    FILE* listing = ::popen("for f in /proc/self/fd/*; do readlink \"$f\"; done", "r");
    ASSERT_NE(listing, nullptr);
    std::string targets;
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, listing)) targets += buffer;
    ::pclose(listing);
    EXPECT_NE(targets, "");
    EXPECT_EQ(targets.find(".drabwise.lock"), std::string::npos) << targets;

    // Another process, and another open of the file in this one, both find it held.
    EXPECT_TRUE(answerOfAnotherProcess(folder));
    EXPECT_TRUE(InstanceLock::anotherCopyIsRunning(folder, errors));
    // The refused attempts let go of nothing: it is still held.
    EXPECT_TRUE(answerOfAnotherProcess(folder));
    // A copy with its own data folder runs beside it.
    EXPECT_FALSE(answerOfAnotherProcess(temp.path() / "elsewhere"));

    // Once this process lets go, the next copy may run.
    InstanceLock::letGo(folder / "..");  // another folder: changes nothing
    EXPECT_TRUE(answerOfAnotherProcess(folder));
    InstanceLock::letGo(folder / ".." / "on demand");  // this one, written another way
    EXPECT_FALSE(answerOfAnotherProcess(folder));
}

TEST(InstanceLock, TheLockEndsWithAKilledHolder) {
    TempFolder temp;
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t holder = ::fork();
    if (holder == 0) {
        std::ostringstream errors;
        bool refused = InstanceLock::anotherCopyIsRunning(temp.path(), errors);
        char answer = refused ? 'n' : 'y';
        (void)!::write(ready[1], &answer, 1);
        ::pause();
        ::_exit(0);
    }
    char answer = 0;
    ASSERT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    std::ostringstream errors;
    EXPECT_TRUE(InstanceLock::anotherCopyIsRunning(temp.path(), errors));

    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_FALSE(InstanceLock::anotherCopyIsRunning(temp.path(), errors));
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(InstanceLock, AnUnusableFolderWarnsAndRunsUnguarded) {
    TempFolder temp;
    std::ofstream(temp.path() / "a file") << "not a folder";
    std::ostringstream errors;
    EXPECT_FALSE(InstanceLock::anotherCopyIsRunning(temp.path() / "a file" / "data", errors));
    EXPECT_EQ(errors.str(), "could not open the lock file; running without the one-copy check\n");
}

}  // namespace
}  // namespace ashview
