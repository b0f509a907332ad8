#ifndef CMCFG_PLATFORM_BASE_SMART_BUFFER_H_
#define CMCFG_PLATFORM_BASE_SMART_BUFFER_H_

#include <cstddef>
#include <memory>

// A reusable character buffer for values read from configuration files.
// Default-constructed it holds an empty C string of kDefaultSize bytes.
class SmartBuffer {
 public:
  static constexpr size_t kDefaultSize = 4096;

  SmartBuffer() : SmartBuffer(kDefaultSize) {}
  explicit SmartBuffer(size_t size);
  SmartBuffer(const SmartBuffer&) = delete;
  SmartBuffer& operator=(const SmartBuffer&) = delete;

  char* GetData() { return data_.get(); }
  const char* GetData() const { return data_.get(); }
  size_t GetSize() const { return size_; }

 private:
  std::unique_ptr<char[]> data_;
  size_t size_;
};

#endif  // CMCFG_PLATFORM_BASE_SMART_BUFFER_H_
