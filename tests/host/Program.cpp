#include "Program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "Libav.h"

namespace {

namespace fs = std::filesystem;

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void Redirect(const std::string& path, int flags, int target) {
    const int descriptor = open(path.c_str(), flags, 0644);
    if (descriptor < 0 || dup2(descriptor, target) < 0) _exit(126);
    close(descriptor);
}

/// Asks until the answer is true, for a minute at most. The last answer.
template <class Question>
bool WaitUntil(Question question) {
    for (int i = 0; i < 3000; ++i) {
        if (question()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return question();
}

int g_runs = 0;

/// FFmpeg's libraries print nothing. Data files are made once for all tests, and nothing in the user's
/// folders is read or written.
class Surroundings : public testing::Environment {
    void SetUp() override {
        host::SetUpLibav();
        setenv("XDG_CACHE_HOME", SE_TEST_FOLDERS "/cache", 1);
        setenv("XDG_CONFIG_HOME", SE_TEST_FOLDERS "/config", 1);
    }
};
[[maybe_unused]] const auto* const g_environment = testing::AddGlobalTestEnvironment(new Surroundings);

}  // namespace

Child::Child(const std::vector<std::string>& command, const fs::path& directory, const RunOptions& options)
    : directory_(directory) {
    const std::string number = std::to_string(g_runs++);
    outFile_ = options.output.empty() ? (directory / (".out" + number)).string() : options.output;
    errorFile_ = options.error.empty() ? (directory / (".error" + number)).string() : options.error;
    std::vector<char*> arguments;
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_ = fork();
    if (pid_ != 0) return;

    std::signal(SIGHUP, SIG_DFL);  // tests that run under nohup ignore it
    Redirect(options.input.empty() ? "/dev/null" : options.input, O_RDONLY, STDIN_FILENO);
    Redirect(outFile_, O_WRONLY | O_CREAT | (options.output.empty() ? O_TRUNC : 0), STDOUT_FILENO);
    Redirect(errorFile_, O_WRONLY | O_CREAT | O_TRUNC | O_NOCTTY, STDERR_FILENO);
    if (chdir(directory.c_str()) != 0) _exit(126);
    if (options.fileSizeLimit) {
        const rlimit limit{*options.fileSizeLimit, *options.fileSizeLimit};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(126);
    }
    for (const std::string& setting : options.environment) {
        if (putenv(strdup(setting.c_str())) != 0) _exit(126);
    }
    execv(arguments.front(), arguments.data());
    _exit(127);
}

Child::~Child() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

void Child::Send(int signal) const {
    kill(pid_, signal);
}

Outcome Child::Wait() {
    Outcome outcome;
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    if (WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
    if (fs::is_regular_file(outFile_)) outcome.out = Content(outFile_);
    if (fs::is_regular_file(errorFile_)) outcome.error = Content(errorFile_);
    return outcome;
}

void ProgramTest::SetUp() {
    std::string name = (fs::temp_directory_path() / "host_test_XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
}

void ProgramTest::TearDown() {
    for (const auto& entry : fs::directory_iterator(directory_)) {
        EXPECT_EQ(entry.path().extension().string().find(".part"), std::string::npos)
            << "a half-written file is left";
    }
    fs::remove_all(directory_);
}

Outcome ProgramTest::Run(const std::vector<std::string>& arguments, const RunOptions& options) const {
    return Start(arguments, options).Wait();
}

Child ProgramTest::Start(std::vector<std::string> arguments, const RunOptions& options) const {
    arguments.insert(arguments.begin(), SE_PROGRAM);
    return Child(arguments, directory_, options);
}

bool ProgramTest::Appears(const std::string& name) const {
    return WaitUntil([&] { return Exists(name); });
}

std::string ProgramTest::Read(const std::string& name) const {
    return Content(directory_ / name);
}

void ProgramTest::Write(const std::string& name, const std::string& content) const {
    std::ofstream(directory_ / name, std::ios::binary) << content;
}

Terminal::Terminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    std::array<char, 64> name{};
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
        ptsname_r(master_, name.data(), name.size()) != 0) {
        throw std::runtime_error("no terminal can be had");
    }
    name_ = name.data();
    keptOpen_ = open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

Terminal::~Terminal() {
    close(keptOpen_);
    close(master_);
}

std::string Terminal::Text() const {
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(master_, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<size_t>(count));
    }
    return text;
}

std::string Terminal::Await(const std::string& part) const {
    std::string text;
    EXPECT_TRUE(WaitUntil([&] {
        text += Text();
        return text.find(part) != std::string::npos;
    })) << text;
    return text;
}

void ExpectError(const Outcome& outcome, int exitCode, const std::string& part) {
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.error;
    EXPECT_NE(outcome.error.find(part), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.error.rfind("specialeffects: ", 0), 0u) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
}

void ExpectSuccess(const Outcome& outcome) {
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
}
