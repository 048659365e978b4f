#include "Platform/Foundation/CallerFault.h"

#include "Platform/Foundation/Thread.h"

#include <atomic>
#include <cstdio>
#include <string>

namespace trelmix {
namespace {

void printInDebugBuilds([[maybe_unused]] const char* what) {
#ifndef NDEBUG
    std::fprintf(stderr, "trelmix: %s\n", what);
#endif
}

std::atomic<CallerFaultHandler> currentHandler{&printInDebugBuilds};

} // namespace

void setCallerFaultHandler(CallerFaultHandler handler) {
    currentHandler.store(handler != nullptr ? handler : &printInDebugBuilds);
}

void reportCallerFault(const char* what) {
    try {
        currentHandler.load()(what);
    } catch (...) {
        // Some faults are told while an exception is under way, or on a thread that it would end.
    }
}

bool requireMainThread(const char* what) {
    if (Thread::isMainThread()) {
        return true;
    }
    reportCallerFault((std::string(what) + " was called on a thread that is not the main one").c_str());
    return false;
}

} // namespace trelmix
