#include "Platform/Foundation/SceneLock.h"

#include "Platform/Foundation/WakeUp.h"

#include <mutex>

namespace trelmix {
namespace {

// Never destroyed: a render thread may still hold it while the process ends.
std::recursive_mutex& sceneMutex() {
    static auto* const instance = new std::recursive_mutex;
    return *instance;
}

thread_local int levelsHeldHere = 0;

} // namespace

SceneLock::SceneLock() {
    sceneMutex().lock();
    ++levelsHeldHere;
}

SceneLock::~SceneLock() {
    const bool isLast = --levelsHeldHere == 0;
    sceneMutex().unlock();
    if (isLast) {
        WakeUp::passOn();
    }
}

bool SceneLock::isHeldHere() {
    return levelsHeldHere > 0;
}

SceneLock::Release::Release() : _levels(levelsHeldHere) {
    levelsHeldHere = 0;
    for (int i = 0; i < _levels; ++i) {
        sceneMutex().unlock();
    }
}

SceneLock::Release::~Release() {
    for (int i = 0; i < _levels; ++i) {
        sceneMutex().lock();
    }
    levelsHeldHere += _levels;
}

} // namespace trelmix
