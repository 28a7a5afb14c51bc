// The program as a child process, in a directory of its own.
#ifndef SPECIALEFFECTS_TESTS_HOST_PROGRAM_H
#define SPECIALEFFECTS_TESTS_HOST_PROGRAM_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct Outcome {
    int exitCode = -1;  ///< -1 when a signal ended it
    int signal = 0;
    std::string out;
    std::string error;
};

struct RunOptions {
    std::string input = {};                           ///< file on standard input; /dev/null when empty
    std::string output = {};                          ///< file for standard output; captured when empty
    std::string error = {};                           ///< file for standard error; captured when empty
    std::optional<unsigned long> fileSizeLimit = {};  ///< bytes that a file may grow to
    /// Set in the child's environment: "TERM=dumb".
    std::vector<std::string> environment = {};
};

/// A running program. Its standard streams are files in its directory, or what the options say.
class Child {
  public:
    Child(const std::vector<std::string>& command, const std::filesystem::path& directory,
          const RunOptions& options = {});
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    void Send(int signal) const;
    Outcome Wait();

  private:
    std::filesystem::path directory_;
    std::string outFile_;
    std::string errorFile_;
    pid_t pid_ = -1;
};

/// A test in an empty directory, at whose end no half-written file may be left.
class ProgramTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs the program, or starts it.
    Outcome Run(const std::vector<std::string>& arguments, const RunOptions& options = {}) const;
    Child Start(std::vector<std::string> arguments, const RunOptions& options = {}) const;

    std::string Path(const std::string& name) const { return (directory_ / name).string(); }
    bool Exists(const std::string& name) const { return std::filesystem::exists(directory_ / name); }
    /// Waits until a program has made the file, for a minute at most. False when it does not.
    bool Appears(const std::string& name) const;
    std::string Read(const std::string& name) const;
    void Write(const std::string& name, const std::string& content) const;

    std::filesystem::path directory_;
};

/// A terminal on which a child may write. `apply` shows its progress there, from the first frame on: "1
/// frames".
class Terminal {
  public:
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal();

    const std::string& Name() const { return name_; }
    /// What has been written since the last call.
    std::string Text() const;
    /// Waits until `part` is written, for a minute at most. Returns what has been written since the last
    /// call.
    std::string Await(const std::string& part) const;

  private:
    int master_ = -1;
    int keptOpen_ = -1;
    std::string name_;
};

/// One line on standard error that holds `part`, and the exit code.
void ExpectError(const Outcome& outcome, int exitCode, const std::string& part);
void ExpectSuccess(const Outcome& outcome);

#endif
