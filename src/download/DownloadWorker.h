// A download on a thread of its own.
#pragma once

#include "download/DownloadRequest.h"

// Waits for the last worker, then starts one with a copy of the request, which becomes the last
// one. False when the URL cannot be downloaded or no thread could be started.
bool StartDownloadWorker(const DownloadRequest& request);
