#include "Platform/Foundation/CallerFault.h"

#include "Platform/Foundation/Thread.h"

#include <atomic>
#include <cstdio>

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
    currentHandler.load()(what);
}

bool requireMainThread(const char* what) {
    if (Thread::isMainThread()) {
        return true;
    }
    reportCallerFault(what);
    return false;
}

} // namespace trelmix
