// The conventions every command shares: what may be written over, failures under a memory
// limit, the progress bar on a terminal (quiet success and --verbose: DocumentCommandsTest.cpp).
#include "support/CliRunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <pty.h>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

int lineCount(const std::string& text)
{
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// Runs the program with a pseudo-terminal as its standard streams; answers what it wrote.
std::string runOnTerminal(const std::vector<std::string>& arguments, int& exitCode)
{
    int master = -1;
    const pid_t pid = ::forkpty(&master, nullptr, nullptr, nullptr);
    if (pid == 0) {
        std::vector<char*> argv{const_cast<char*>(TESSAPHON_CLI)};
        for (const std::string& a : arguments)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        ::execv(TESSAPHON_CLI, argv.data());
        ::_exit(127);
    }
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = ::read(master, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(n));
    int status = 0;
    ::waitpid(pid, &status, 0);
    ::close(master);
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return text;
}

} // namespace

TEST(CliConventions, OutputsAreNeverWrittenOverBySurprise)
{
    TempDir dir;
    runCliOk("new --length 300 -o " + dir / "a.stk");
    const std::string document = slurp(dir / "a.stk");

    // A default output that exists is kept, named, and --force suggested.
    std::ofstream(dir / "a.wav") << "yesterday's synthesis";
    CliResult kept = runCli("synth " + dir / "a.stk");
    EXPECT_EQ(kept.exitCode, 2);
    EXPECT_NE(kept.err.find(dir / "a.wav"), std::string::npos) << kept.err;
    EXPECT_NE(kept.err.find("--force"), std::string::npos) << kept.err;
    EXPECT_EQ(lineCount(kept.err), 1);
    EXPECT_EQ(slurp(dir / "a.wav"), "yesterday's synthesis");

    // --force and an explicit -o replace it.
    runCliOk("synth --force " + dir / "a.stk");
    const std::string wave = slurp(dir / "a.wav");
    std::ofstream(dir / "a.wav") << "stale";
    runCliOk("synth " + dir / "a.stk" + " -o " + dir / "a.wav");
    EXPECT_TRUE(slurp(dir / "a.wav") == wave);

    // No command writes to a file it reads, however the path is spelled, with or without --force:
    // a recording whose default output is itself, and -o naming the input.
    std::filesystem::create_directories(dir.path / "sub");
    for (const std::string& args :
         {"synth --force " + dir / "a.wav", "synth " + dir / "a.stk" + " -o " + dir / "a.stk",
          "synth " + dir / "a.stk" + " --force -o " + dir / "sub/../a.stk",
          "spectrogram " + dir / "a.wav" + " -o " + dir / "a.wav"}) {
        CliResult r = runCli(args);
        EXPECT_EQ(r.exitCode, 2) << args;
        EXPECT_EQ(lineCount(r.err), 1) << r.err;
    }
    EXPECT_TRUE(slurp(dir / "a.wav") == wave);
    EXPECT_TRUE(slurp(dir / "a.stk") == document);

    // A write that fails leaves nothing behind, and the successful ones left no temporary files.
    CliResult unwritable = runCli("synth " + dir / "a.stk" + " -o " + dir / "missing/a.wav");
    EXPECT_EQ(unwritable.exitCode, 2);
    EXPECT_NE(unwritable.err.find("missing/a.wav"), std::string::npos) << unwritable.err;
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path))
        names.insert(entry.path().filename().string());
    EXPECT_EQ(names, (std::set<std::string>{"a.stk", "a.wav", "sub"}));
}

TEST(CliConventions, AllocationFailureIsOneLineNamingTheFile)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's shadow memory does not fit under an address-space limit";
#endif
    TempDir dir;
    runCliOk("new --length 600000 -o " + dir / "long.stk");
    // 40 MB of address space: the program starts, the synthesis of ten minutes does not fit.
    CliResult r = runCliAfter("ulimit -v 40000;", "synth " + dir / "long.stk");
    EXPECT_EQ(r.exitCode, 2) << r.err;
    EXPECT_NE(r.err.find("long.stk"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("memory"), std::string::npos) << r.err;
    EXPECT_EQ(lineCount(r.err), 1) << r.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "long.wav"));
}

TEST(CliConventions, ProgressBarOnlyOnATerminal)
{
    TempDir dir;
    std::vector<std::string> args{"synth", "-j", "2"};
    for (const char* name : {"a", "b", "c"}) {
        runCliOk(std::string("new -o ") + dir / (std::string(name) + ".stk"));
        args.push_back(dir / (std::string(name) + ".stk"));
    }
    int exitCode = -1;
    const std::string screen = runOnTerminal(args, exitCode);
    EXPECT_EQ(exitCode, 0) << screen;
    EXPECT_NE(screen.find("] 3/3"), std::string::npos) << screen;
    EXPECT_NE(screen.find('#'), std::string::npos) << screen;
}
