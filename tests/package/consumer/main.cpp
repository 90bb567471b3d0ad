#include <cstdio>

#include <ZrHbHttpHeaders.h>

int main() {
    CZrHbHttpHeaders headers;
    headers.AddHeaders("X-Client: 3", CZrHbHttpHeaders::eAddHandling_Replace);
    std::fputs(headers.GetHeaders(), stdout);
    return 0;
}
