#include "Interrupt.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include "Terminal.h"

namespace host {
namespace {

constexpr int kSignalExit = 128;

std::atomic<int> g_signal{0};
static_assert(std::atomic<int>::is_always_lock_free);

std::atomic<int> g_creations{0};
std::atomic<bool> g_dying{false};

const char* g_acknowledgement = "";

void Say(const char* text) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
}

}  // namespace

// An entry stays in the list forever, so that the handler can walk it at any time, and is used again.
struct DoomedFile::Entry {
    std::string text;
    std::atomic<const char*> path{nullptr};  // into `text`, while the file is doomed
    std::atomic<bool> taken{true};
    Entry* next = nullptr;

    static std::atomic<Entry*> first;
};
std::atomic<DoomedFile::Entry*> DoomedFile::Entry::first{nullptr};

// Files that other threads are about to create have to be among them: these threads are waited for, and
// no thread begins another one.
void RemoveDoomedFiles() {
    g_dying = true;
    while (g_creations > 0) {
        const timespec moment{0, 1'000'000};
        nanosleep(&moment, nullptr);
    }
    for (const auto* entry = DoomedFile::Entry::first.load(); entry != nullptr; entry = entry->next) {
        if (const char* path = entry->path.load()) unlink(path);
    }
}

DoomedFile::DoomedFile(const std::string& path) {
    for (entry_ = Entry::first.load(); entry_ != nullptr; entry_ = entry_->next) {
        if (!entry_->taken.exchange(true)) break;
    }
    if (entry_ == nullptr) {
        entry_ = new Entry;
        entry_->next = Entry::first.load();
        while (!Entry::first.compare_exchange_weak(entry_->next, entry_)) {
        }
    }
    entry_->text = path;
    entry_->path = entry_->text.c_str();
}

DoomedFile::~DoomedFile() {
    entry_->path = nullptr;
    entry_->taken = false;
}

// The handler must not run on this thread: it would wait for itself.
DoomedFileCreation::DoomedFileCreation() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before_);
    ++g_creations;
    if (!g_dying) return;
    --g_creations;
    for (;;) pause();
}

DoomedFileCreation::~DoomedFileCreation() {
    --g_creations;
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

namespace {

void OnSignal(int signal) {
    const int before = errno;
    if (g_signal.exchange(signal) != 0) {
        RemoveDoomedFiles();
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    } else {
        Say(g_acknowledgement);
    }
    errno = before;
}

}  // namespace

void SetUpSignals() {
    if (OnTerminal(STDERR_FILENO)) {
        g_acknowledgement =
            HasEscapes() ? "\r\033[Kspecialeffects: stopping\n" : "specialeffects: stopping\n";
    }
    struct sigaction action {};
    action.sa_handler = OnSignal;  // without SA_RESTART: a read that waits for input comes back
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    struct sigaction hangUp {};
    sigaction(SIGHUP, nullptr, &hangUp);
    if (hangUp.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);  // nohup ignores it
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool Interrupted() {
    return g_signal != 0;
}

int InterruptedExitCode() {
    return kSignalExit + g_signal;
}

}  // namespace host
