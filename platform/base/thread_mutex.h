#ifndef CMCFG_PLATFORM_BASE_THREAD_MUTEX_H_
#define CMCFG_PLATFORM_BASE_THREAD_MUTEX_H_

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define CMCFG_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define CMCFG_THREAD_ANNOTATION(x)
#endif
#define CMCFG_CAPABILITY(x) CMCFG_THREAD_ANNOTATION(capability(x))
#define CMCFG_SCOPED_CAPABILITY CMCFG_THREAD_ANNOTATION(scoped_lockable)
#define CMCFG_GUARDED_BY(x) CMCFG_THREAD_ANNOTATION(guarded_by(x))
#define CMCFG_ACQUIRE(...) CMCFG_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define CMCFG_RELEASE(...) CMCFG_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define CMCFG_REQUIRES(...) CMCFG_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
// For a function that takes or drops a lock its caller holds across calls
// (the agent's LockBase and UnlockBase): the analysis cannot follow it.
#define CMCFG_NO_THREAD_SAFETY_ANALYSIS CMCFG_THREAD_ANNOTATION(no_thread_safety_analysis)

// A non-recursive mutex.
class CMCFG_CAPABILITY("mutex") ThreadMutex {
 public:
  ThreadMutex() = default;
  ThreadMutex(const ThreadMutex&) = delete;
  ThreadMutex& operator=(const ThreadMutex&) = delete;

  void Lock() CMCFG_ACQUIRE() { mu_.lock(); }
  void Unlock() CMCFG_RELEASE() { mu_.unlock(); }

 private:
  friend class ThreadCondition;
  std::mutex mu_;
};

// A condition variable over a ThreadMutex, which the waiter holds.
class ThreadCondition {
 public:
  ThreadCondition() = default;
  ThreadCondition(const ThreadCondition&) = delete;
  ThreadCondition& operator=(const ThreadCondition&) = delete;

  void NotifyAll() { cv_.notify_all(); }
  // Lets go of `mu` until notified or `deadline`, then holds it again.
  // False when the deadline passed; wakes may be spurious, so callers test
  // their condition again.
  bool WaitUntil(ThreadMutex* mu, std::chrono::steady_clock::time_point deadline)
      CMCFG_REQUIRES(mu) {
    std::unique_lock<std::mutex> held(mu->mu_, std::adopt_lock);
    const bool notified = cv_.wait_until(held, deadline) == std::cv_status::no_timeout;
    held.release();  // still held: the caller's guard lets go
    return notified;
  }

 private:
  std::condition_variable cv_;
};

// Holds a ThreadMutex for the lifetime of the guard.
class CMCFG_SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(ThreadMutex* mu) CMCFG_ACQUIRE(mu) : mu_(mu) { mu_->Lock(); }
  ~MutexLock() CMCFG_RELEASE() { mu_->Unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  ThreadMutex* const mu_;
};

#endif  // CMCFG_PLATFORM_BASE_THREAD_MUTEX_H_
