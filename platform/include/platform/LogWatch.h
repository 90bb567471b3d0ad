// This process's own records of the client's log, which all processes of the user share.
#pragma once

#include <functional>
#include <list>
#include <string_view>

#include "Diagnostics.h"
#include "Export.h"

ZRHB_EXPORT_BEGIN

namespace platform {

struct WatchedRecord {
    Severity severity;
    std::string_view text; // as it is in the file: UTF-8, secrets masked, controls escaped
    bool isWritten;        // else the file cannot be written
};

// While it lives, its function is called with each record, one at a time, by the thread that makes
// it. The function must not make one itself.
class LogWatch {
public:
    using Function = std::function<void(const WatchedRecord&)>;

    explicit LogWatch(Function function);
    ~LogWatch(); // the function does not run afterwards
    LogWatch(const LogWatch&) = delete;
    LogWatch& operator=(const LogWatch&) = delete;

private:
    std::list<Function>::iterator m_place;
};

// For who writes the log.
void TellLogWatches(const WatchedRecord& record);

} // namespace platform

ZRHB_EXPORT_END
