#ifndef CMCFG_PLATFORM_BLOCKS_SHARED_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_SHARED_ACCESSOR_H_

#include "platform/blocks/shared_instance.h"

// Base of an accessor of which the process holds one shared,
// reference-counted instance over root + "telephony/" + Accessor::kFileName.
// Accessor derives from SharedAccessor<Accessor>, has a private constructor
// from the file's path and `cfg::Status LoadStatus()` (ok when the file was
// read), befriends SharedAccessor<Accessor>, and its .cc file instantiates
// this template (accessor_instance.h), so there is one instance per process.
//
// Threads: every holder sees the same object, so a reload by one thread
// rewrites the values another is reading. The rule: a reload, a save and
// any read of values that another thread may reload meanwhile run under
// Lock, held from the reload through the reads that must agree with it.
// Without other threads (the agent's start-up reads) no lock is needed.
// GetInstance and CloseInstance take no Lock; a holder of Lock may call them.
template <typename Accessor>
class SharedAccessor {
 public:
  // Holds the shared instance's values lock while in scope; not recursive.
  using Lock = SharedValuesLock<Accessor>;
  // The mutex behind Lock; the same for every instance, open or not.
  static ThreadMutex& InstanceMutex();

  // The shared instance, reading the file when there is none. With
  // createIfMissing a missing or unreadable file gives an instance with the
  // defaults (or without blocks), never nullptr; without it such a file
  // gives nullptr. Out of memory gives nullptr either way. Every non-null
  // result is paired with one CloseInstance.
  static Accessor* GetInstance(bool createIfMissing);
  // Drops one reference; the last one deletes the instance. Harmless
  // without a reference (after a failed GetInstance).
  static void CloseInstance();

 protected:
  SharedAccessor() = default;
  ~SharedAccessor() = default;
  SharedAccessor(const SharedAccessor&) = default;
  SharedAccessor& operator=(const SharedAccessor&) = default;

  // The process-wide instance holder, for an accessor's own variants of
  // GetInstance and CloseInstance.
  static SharedInstance<Accessor>& Shared();

 private:
  static Accessor* Make(bool createIfMissing);
  static void Destroy(Accessor* accessor);
};

// One reference to Accessor's shared instance, taken with GetInstance when
// constructed (or on first use, with Lazy) and dropped with CloseInstance
// when it goes, on every path. Move-only; empty when GetInstance gave none.
template <typename Accessor>
class InstanceRef {
 public:
  struct Lazy {};

  explicit InstanceRef(bool createIfMissing)
      : createIfMissing_(createIfMissing), tried_(true),
        instance_(SharedAccessor<Accessor>::GetInstance(createIfMissing)) {}
  // Takes the reference at the first get().
  InstanceRef(bool createIfMissing, Lazy) : createIfMissing_(createIfMissing) {}
  ~InstanceRef() { Reset(); }
  InstanceRef(InstanceRef&& other) noexcept
      : createIfMissing_(other.createIfMissing_), tried_(other.tried_),
        instance_(other.instance_) {
    other.instance_ = nullptr;
  }
  InstanceRef(const InstanceRef&) = delete;
  InstanceRef& operator=(const InstanceRef&) = delete;
  InstanceRef& operator=(InstanceRef&&) = delete;

  // The instance, or nullptr.
  Accessor* get() {
    if (!tried_) {
      tried_ = true;
      instance_ = SharedAccessor<Accessor>::GetInstance(createIfMissing_);
    }
    return instance_;
  }
  Accessor* operator->() { return get(); }
  explicit operator bool() { return get() != nullptr; }

  // Drops the reference now; get() takes none again.
  void Reset() {
    if (instance_ != nullptr) SharedAccessor<Accessor>::CloseInstance();
    instance_ = nullptr;
  }

 private:
  const bool createIfMissing_;
  bool tried_ = false;
  Accessor* instance_ = nullptr;
};

#endif  // CMCFG_PLATFORM_BLOCKS_SHARED_ACCESSOR_H_
