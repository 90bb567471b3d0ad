#include <platform/LogWatch.h>

#include <memory>
#include <mutex>
#include <utility>

namespace platform {
namespace {

// Of the process.
struct LogWatches {
    std::mutex lock; // held while they run
    std::list<LogWatch::Function> functions;

    static LogWatches& Get() {
        // Never destroyed: records are made until the process ends.
        static LogWatches& watches = *std::make_unique<LogWatches>().release();
        return watches;
    }
};

} // namespace

LogWatch::LogWatch(Function function) {
    LogWatches& watches = LogWatches::Get();
    const std::lock_guard guard(watches.lock);
    m_place = watches.functions.insert(watches.functions.end(), std::move(function));
}

LogWatch::~LogWatch() {
    LogWatches& watches = LogWatches::Get();
    const std::lock_guard guard(watches.lock);
    watches.functions.erase(m_place);
}

void TellLogWatches(const WatchedRecord& record) {
    LogWatches& watches = LogWatches::Get();
    const std::lock_guard guard(watches.lock);
    for (const LogWatch::Function& function : watches.functions)
        function(record);
}

} // namespace platform
