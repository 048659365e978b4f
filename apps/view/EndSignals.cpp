#include "view/EndSignals.h"

#include <SDL.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>
#include <unistd.h>

namespace trelmix::apps {

namespace {

constexpr std::chrono::milliseconds kGrace{500};
constexpr int kSignalledCode = 128;

std::atomic<int> arrivedSignal{0};

void waitFor(sigset_t signals) {
    int arrived = 0;
    if (::sigwait(&signals, &arrived) != 0) {
        return;
    }
    arrivedSignal = arrived;
    SDL_Event quit{};
    quit.type = SDL_QUIT;
    SDL_PushEvent(&quit); // refused before there is a window; then only the end below helps
    std::this_thread::sleep_for(kGrace);
    ::_exit(kSignalledCode + arrived);
}

} // namespace

void closeOnSignals() {
    // They would otherwise be taken by SDL, and be looked at after the next frame at the earliest.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction now {};
        if (::sigaction(number, nullptr, &now) == 0 && now.sa_handler != SIG_IGN) {
            sigaddset(&signals, number);
        }
    }
    // Threads made from now on inherit this: the signals are for the one that waits for them.
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread(waitFor, signals).detach();
}

int exitCodeAfterSignals(int code) {
    const int arrived = arrivedSignal;
    return arrived != 0 ? kSignalledCode + arrived : code;
}

} // namespace trelmix::apps
