// A page through getter, in-process back-end and builtin engine, beside the same request by
// libcurl's easy interface with a fresh handle and with a reused one.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include <curl/curl.h>

#include <ZrHbUHttpGet.h>

#include "BenchServer.h"
#include "Measurement.h"

namespace {

constexpr std::size_t kPageSize = 4000;

using CurlHandle = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

std::string Page() {
    std::string page = "<!DOCTYPE html><html><head><title>Konto</title></head><body><table>\n";
    while (page.size() < kPageSize - 100)
        page += "<tr><td>12.05.2010</td><td>Zahlung</td><td>1'234.50</td></tr>\n";
    return page + "</table></body></html>\n";
}

void Check(bool isRight, const std::string& what) {
    if (!isRight) throw std::runtime_error(what);
}

std::size_t Append(char* data, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

void FetchWithCurl(CURL* handle, const std::string& url, const std::string& page) {
    std::string body;
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &Append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    Check(curl_easy_perform(handle) == CURLE_OK && body == page, "libcurl read another page");
}

void FetchWithGetter(CZrHbUHttpGet& getter, const std::string& url, const std::string& page) {
    CString error;
    CString location;
    CByteBuffer body(1024, 256);
    Check(getter.Open(url.c_str(), error, FALSE) == 0, error.GetString());
    Check(getter.BusyRead(body, error, location, 10000, FALSE, 10000, nullptr, nullptr) == 0,
          error.GetString());
    Check(body.GetString() == CString(page), "the getter read another page");
}

void Print(const Measurement& measurement, const Measurement& peer) {
    std::printf("%-32s %9.3f %9.3f %9.3f %9.2f\n", measurement.Name().c_str(),
                measurement.WallQuantile(0.5), measurement.WallQuantile(0.9),
                measurement.ProcessorMean(),
                measurement.WallQuantile(0.5) / peer.WallQuantile(0.5));
}

void Run(int rounds) {
    const std::string page = Page();
    const BenchServer server(page);
    const CurlHandle reused(curl_easy_init(), &curl_easy_cleanup);
    CZrHbUHttpGet getter(eAppGroup_2);
    CString error;
    Check(getter.ConnectV2(nullptr, error, CZrHbUHttpGet::eVisible,
                           CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "") == 0,
          error.GetString());

    std::vector<Measurement> measurements = {
        {"getter, builtin engine", [&] { FetchWithGetter(getter, server.Url(), page); }},
        {"libcurl easy, fresh handle",
         [&] {
             const CurlHandle fresh(curl_easy_init(), &curl_easy_cleanup);
             FetchWithCurl(fresh.get(), server.Url(), page);
         }},
        {"libcurl easy, reused handle", [&] { FetchWithCurl(reused.get(), server.Url(), page); }},
    };
    std::vector<Measurement> warmUp = measurements;
    RunInterleaved(warmUp, 3);
    RunInterleaved(measurements, rounds);
    std::printf("%zu bytes a page, %d rounds, milliseconds\n", page.size(), rounds);
    std::printf("%-32s %9s %9s %9s %9s\n", "", "median", "p90", "cpu mean", "ratio");
    for (const Measurement& measurement : measurements)
        Print(measurement, measurements[1]);
}

} // namespace

int main(int argc, char** argv) {
    int rounds = 3000;
    if (argc == 3 && std::strcmp(argv[1], "--rounds") == 0) rounds = std::atoi(argv[2]);
    if (rounds <= 0 || (argc != 1 && argc != 3)) {
        std::fputs("usage: page_bench [--rounds N]\n", stderr);
        return 2;
    }
    curl_global_init(CURL_GLOBAL_DEFAULT);
    return ExitStatusOf("page_bench", [&] { Run(rounds); });
}
