// A web server that nobody here wrote: httpbin, which answers a request with what it understood of
// it, as JSON.
#pragma once

#include <string>

#include <sys/types.h>

namespace test_support {

// httpbin of the distribution, in a process of its own on a loopback port that the system gives.
// It reads texts as ISO 8859-1, so that each byte comes back as the code point of its value. What
// it writes goes into a directory that is removed with it. It ends with this object and, when this
// process ends without warning, by itself.
class HttpBin {
public:
    // Returns once the server accepts connections. Throws std::runtime_error with the server's
    // words when it does not start, as on a machine that lacks it.
    HttpBin();
    ~HttpBin();
    HttpBin(const HttpBin&) = delete;
    HttpBin& operator=(const HttpBin&) = delete;

    // "http://127.0.0.1:PORT" + path.
    std::string Url(const std::string& path) const { return m_origin + path; }

private:
    void Start(int input, int output);
    void End();
    std::string Words() const;

    std::string m_directory;
    std::string m_origin;
    pid_t m_process = -1;
    int m_life = -1; // the server ends when this is closed
};

} // namespace test_support
