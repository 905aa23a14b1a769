// Tells ThreadSanitizer about QMutex.
//
// Qt 5 is not built with the sanitizer, and QMutex::lock/unlock are out of
// line in libQt5Core: code that guards its data with a QMutex (the settings
// statics, the loggers) looks unsynchronised to the sanitizer, which reports
// every guarded access as a race. Preloaded into a ThreadSanitizer test run
// (LD_PRELOAD, see the "tsan" preset and tools/run-sanitizers.sh), this
// library puts itself in front of Qt's QMutex::lock, tryLock and unlock,
// calls them, and declares the acquire and release to the sanitizer. Only
// for sanitizer builds; never shipped.
#include <QMutex>

#include <dlfcn.h>

extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

namespace {

template <typename F>
F qtFunction(const char* symbol)
{
    void* found = dlsym(RTLD_NEXT, symbol);
    return reinterpret_cast<F>(found);
}

using LockFn = void (*)(QMutex*);
using TryLockFn = bool (*)(QMutex*, int);
using UnlockFn = void (*)(QMutex*);

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const LockFn real = qtFunction<LockFn>("_ZN6QMutex4lockEv");
    real(this);
    __tsan_acquire(this);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static const TryLockFn real = qtFunction<TryLockFn>("_ZN6QMutex7tryLockEi");
    const bool locked = real(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QMutex::unlock() noexcept
{
    static const UnlockFn real = qtFunction<UnlockFn>("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    real(this);
}
