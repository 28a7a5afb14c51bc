#include "Interrupt.h"

#include <csignal>

namespace host {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnSignal(int signal) {
    if (g_interrupted != 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    g_interrupted = 1;
}

}  // namespace

void SetUpSignals() {
    struct sigaction action {};
    action.sa_handler = OnSignal;  // without SA_RESTART: a read that waits for input comes back
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    struct sigaction hangUp {};
    sigaction(SIGHUP, nullptr, &hangUp);
    if (hangUp.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);  // else nohup wants it so
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool Interrupted() {
    return g_interrupted != 0;
}

}  // namespace host
