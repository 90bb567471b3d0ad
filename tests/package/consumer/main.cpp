#include <cstdio>

#include <ZrHbBrightrelayReply.h>
#include <ZrHbDataTransmit.h>
#include <ZrHbHttpHeaders.h>
#include <ZrHbHttpString.h>
#include <ZrHbInet.h>
#include <ZrHbUHttpGet.h>

namespace {

// 1 for an object of an exported class whose implementation object was there and is gone.
template <class TExported>
struct Emptied : TExported {
    using TExported::TExported;
    int Empty() { return this->DeleteImpl() - this->DeleteImpl() - this->CreateImpl(nullptr); }
};

} // namespace

int main() {
    CZrHbHttpHeaders headers;
    headers.AddHeaders("X-Client: 3", CZrHbHttpHeaders::eAddHandling_Replace);
    std::fputs(headers.GetHeaders(), stdout);
    Emptied<CZrHbHttpHeaders> none;
    const int emptied = none.Empty() + Emptied<CZrHbDataTransmit>().Empty() +
                        Emptied<CZrHbHttpString>().Empty() + Emptied<CZrHbInet>().Empty() +
                        Emptied<CZrHbBrightrelayReply>().Empty() +
                        Emptied<CZrHbUHttpGet>(eAppGroup_2).Empty();
    return emptied == 6 && none.GetHeaders().IsEmpty() ? 0 : 1;
}
