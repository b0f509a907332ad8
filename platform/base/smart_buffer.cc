#include "platform/base/smart_buffer.h"

// Zero-filled, so even a buffer nobody wrote into reads as "" (callers append
// its text to paths without checking).
SmartBuffer::SmartBuffer(size_t size)
    : data_(new char[size > 0 ? size : 1]()), size_(size) {}
