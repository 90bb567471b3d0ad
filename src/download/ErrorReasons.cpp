// Why communication with a server may have failed, for the user.

#include <ZrHbInet.h>

#include "errors/LibraryModule.h"
#include "siblings/ZrAbErrorFile.h"
#include "siblings/ZrAbResourceHandling.h"

namespace {

constexpr UINT kHeading = 101;
constexpr UINT kNoConnection = 102;
constexpr UINT kFirstOtherReason = 103;
constexpr UINT kLastReason = 107;

CString ReasonList(EZrAbAppGroup eGroup, UINT nFirst) {
    const CZrAbResourceHandling resources(eGroup, kLibraryModuleName, "");
    CString list;
    list.LoadString(kHeading);
    for (UINT id = nFirst; id <= kLastReason; ++id) {
        CString reason;
        reason.LoadString(id);
        list += "\n- " + reason;
    }
    return list;
}

CString CallText(EZrAbAppGroup eGroup, int nKind) {
    CString text;
    text.Format("GetReasonForCommunicationError(%d, %d): ", static_cast<int>(eGroup), nKind);
    return text;
}

} // namespace

CString CZrHbInet::GetReasonForCommunicationError(EZrAbAppGroup eGroup,
                                                  EZrHbErrorServerResponse eErrorServerResponse) {
    CString reasons;
    const CString call = CallText(eGroup, static_cast<int>(eErrorServerResponse));
    if (eErrorServerResponse == eErrorServerResponse_NoResponse)
        reasons = ReasonList(eGroup, kNoConnection);
    else if (eErrorServerResponse == eErrorServerResponse_BadResponse)
        reasons = ReasonList(eGroup, kFirstOtherReason);
    else
        CZrAbErrorFile::LogError(call + "invalid eErrorServerResponse", eGroup, __FILE__, __LINE__,
                                 __TIMESTAMP__, CZrAbErrorFile::eFunctionType_Http);
    CZrAbErrorFile::LogFlow(call + "returns\n\"" + reasons + "\"", eGroup, __FILE__, __LINE__,
                            __TIMESTAMP__, CZrAbErrorFile::eFunctionType_Http);
    return reasons;
}
