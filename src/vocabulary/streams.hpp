// Where the bytes of a conversion come from and where they go.
#pragma once

#include <cstdint>
#include <functional>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// The content of an input.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Hands the `size` bytes from `offset` on to `use`, for the time of the call. They lie inside
  /// the input. Fails as the source sees fit.
  virtual void read(std::uint64_t offset, std::size_t size,
                    const std::function<void(ByteView)>& use) const = 0;
};

/// Takes the bytes of an output from start to end.
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  /// Announces the size of the whole output, in bytes. Never fails.
  virtual void reserve(std::uint64_t size) = 0;
  /// Fails as the sink sees fit.
  virtual void append(ByteView bytes) = 0;
};

/// An input that lies in memory, which outlives it.
class MemorySource : public ByteSource {
 public:
  /// `content` is all of it.
  explicit MemorySource(ByteView content) : content_(content) {}
  void read(std::uint64_t offset, std::size_t size,
            const std::function<void(ByteView)>& use) const override {
    use(content_.subspan(static_cast<std::size_t>(offset), size));
  }

 private:
  ByteView content_;
};

/// An output that is kept in memory. Fails with std::bad_alloc.
class MemorySink : public ByteSink {
 public:
  void reserve(std::uint64_t size) override { bytes.reserve(static_cast<std::size_t>(size)); }
  void append(ByteView more) override { appendBytes(bytes, more); }

  ByteBuffer bytes;  ///< what came so far
};

/// Takes the finished fraction of the current file, 0.0 to 1.0: after each block of sample data
/// (1.0 after the last), or once with 1.0 when the file has no frames. Called on the converting
/// thread; may be empty. What it throws ends the conversion.
using ProgressHandler = std::function<void(double fraction)>;

}  // namespace corvana
