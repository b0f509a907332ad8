#ifndef CMCFG_PLATFORM_BLOCKS_SHARED_INSTANCE_H_
#define CMCFG_PLATFORM_BLOCKS_SHARED_INSTANCE_H_

#include "platform/base/thread_mutex.h"

// The one reference-counted instance of an accessor in this process.
// Acquire creates it through `make` when there is none (the file is read
// then, so a changed configuration root is seen by the next instance) and
// otherwise hands out the existing one, whatever the flag; every non-null
// Acquire is paired with one Release, and the last Release deletes the
// instance through `destroy`. Release without a reference is a no-op, so a
// caller may close after a failed open.
//
// Meant to be a function-local static of the accessor's .cc file. Two
// mutexes: one guards the reference count (taken inside Acquire and
// Release), the other - values_mutex() - is the instance's lock over its
// values, taken by the callers (SharedValuesLock) around a reload or save of
// the shared object and around the reads that must agree with it. It
// outlives every instance, so it can be taken whether or not one is open.
// Order: values_mutex() before the count's mutex (a holder may close).
template <typename T>
class SharedInstance {
 public:
  using Factory = T* (*)(bool createIfMissing);
  using Deleter = void (*)(T*);

  SharedInstance(Factory make, Deleter destroy) : make_(make), destroy_(destroy) {}
  SharedInstance(const SharedInstance&) = delete;
  SharedInstance& operator=(const SharedInstance&) = delete;

  // The instance, or nullptr when there is none and `make` gave none.
  T* Acquire(bool createIfMissing) {
    MutexLock lock(&mu_);
    if (instance_ == nullptr) {
      instance_ = make_(createIfMissing);
      if (instance_ == nullptr) return nullptr;
    }
    ++refs_;
    return instance_;
  }

  // Drops one reference.
  void Release() {
    MutexLock lock(&mu_);
    ReleaseLocked();
  }

  // Drops one reference when `which` is the current instance; a stale or
  // null pointer is ignored.
  void Release(const T* which) {
    MutexLock lock(&mu_);
    if (which != nullptr && which == instance_) ReleaseLocked();
  }

  // The lock over the values of whichever instance is open.
  ThreadMutex& values_mutex() { return values_; }

 private:
  void ReleaseLocked() CMCFG_THREAD_ANNOTATION(requires_capability(mu_)) {
    if (refs_ == 0) return;
    if (--refs_ == 0) {
      destroy_(instance_);
      instance_ = nullptr;
    }
  }

  const Factory make_;
  const Deleter destroy_;
  ThreadMutex values_;
  ThreadMutex mu_;
  T* instance_ CMCFG_GUARDED_BY(mu_) = nullptr;
  unsigned long refs_ CMCFG_GUARDED_BY(mu_) = 0;
};

// Holds the values lock of Accessor's shared instance for its lifetime.
// Accessor provides `static ThreadMutex& InstanceMutex()` (its
// SharedInstance's values_mutex()). Not recursive: one per thread at a time
// for the same accessor.
template <typename Accessor>
class CMCFG_SCOPED_CAPABILITY SharedValuesLock {
 public:
  SharedValuesLock() CMCFG_ACQUIRE(Accessor::InstanceMutex()) : lock_(&Accessor::InstanceMutex()) {}
  ~SharedValuesLock() CMCFG_RELEASE() = default;
  SharedValuesLock(const SharedValuesLock&) = delete;
  SharedValuesLock& operator=(const SharedValuesLock&) = delete;

 private:
  MutexLock lock_;
};

#endif  // CMCFG_PLATFORM_BLOCKS_SHARED_INSTANCE_H_
