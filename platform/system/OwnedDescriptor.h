// A file descriptor that is closed when its owner goes away.
#pragma once

#include <utility>

#include <unistd.h>

namespace platform {

class OwnedDescriptor {
public:
    explicit OwnedDescriptor(int descriptor) : m_descriptor(descriptor) {}
    OwnedDescriptor(OwnedDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    OwnedDescriptor& operator=(OwnedDescriptor&&) = delete;
    ~OwnedDescriptor() { Close(); }

    bool IsOpen() const { return m_descriptor >= 0; }
    int Get() const { return m_descriptor; }
    int Release() { return std::exchange(m_descriptor, -1); }
    // False when the system reports a late write error (errno).
    bool Close() { return m_descriptor < 0 || close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor;
};

} // namespace platform
