// One download from its URL into its file, on the calling thread.
#pragma once

#include "download/DownloadRequest.h"
#include "download/InternetHandle.h"

enum class DownloadResult { complete = 1, failed = 2, stopped = 3 };

class FileDownload {
public:
    // The request must outlive the object.
    explicit FileDownload(const DownloadRequest& request) : m_request(request) {}

    // Tells the window of the progress, the log of everything else.
    DownloadResult InternetReadFileInSynchMode();

private:
    bool AssureBrowserIsOnline() const;
    bool ConnectToInternet();
    bool OpenUrl();
    bool QueryStatus(long& status) const;
    bool AskForCredentials() const;
    void TellBrokenRead() const;
    DownloadResult ReadFileFromInternet() const;

    const DownloadRequest& m_request;
    InternetHandle m_connection;
    InternetHandle m_reply; // goes first
};
