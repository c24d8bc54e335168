#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace coffrelune {

/// Owns a handle of the system and closes it. Holds nothing when the call that was to give the
/// handle failed, whichever of its two ways to say so it chose.
class UniqueHandle {
  public:
    UniqueHandle() = default;
    explicit UniqueHandle(void* handle) : handle_(checked(handle)) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        reset(std::exchange(other.handle_, nullptr));
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { reset(); }

    bool valid() const { return handle_ != nullptr; }
    void* get() const { return handle_; }
    /// Keeps the calling thread's last error.
    void reset(void* handle = nullptr);

  private:
    static void* checked(void* handle);

    void* handle_ = nullptr;
};

/// Opens what is there, and lets everybody else do with it what they like. `access` and `flags` are
/// CreateFile's. Nothing, with the thread's last error, when that fails.
UniqueHandle openShared(const std::wstring& path, std::uint32_t access, std::uint32_t flags);

}  // namespace coffrelune
