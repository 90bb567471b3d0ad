// The file that a download goes into.
#pragma once

#include <cstddef>
#include <memory>

#include <platform/File.h>

// Collects small writes into large ones. Its operations are false when the system refuses them,
// with its text in Error(); what was written before stays.
class TargetFile {
public:
    ~TargetFile() { Close(); }

    // Creates or empties the file.
    bool Open(const CString& strFile);
    // Room for that many bytes; null when what stood in its place cannot be written.
    char* Room(std::size_t size);
    // The first of what was put into the room belong to the file.
    void Keep(std::size_t count) { m_length += count; }
    // Nothing that was kept is held back.
    bool Flush();
    bool Close();
    const CString& Error() const { return m_error; }

private:
    template <class TAction>
    bool Try(TAction action);

    CFile m_file;
    std::unique_ptr<char[]> m_pending;
    std::size_t m_length = 0; // of it
    CString m_error;
    bool m_isOpen = false;
};
