#include "internet/LastResponse.h"

namespace platform {

InternetFailure& LastResponse() {
    static thread_local InternetFailure failure;
    return failure;
}

} // namespace platform
