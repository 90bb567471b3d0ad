// The per-group directories of the client.
#pragma once

#include <ZrAbAppGroup.h>
#include <platform/String.h>

enum EZrAbModule : int {
    eModule_HttpBase = 2,
    eModule_ApiWrapperGroup3 = 13,
    eModule_ApiWrapper = 15,
};

class CZrAbModules {
public:
    // The group's settings directory, with a path separator at its end; empty when there is none
    // that can be read. nReserved is 1.
    static CString GetSettingsPath(EZrAbAppGroup eGroup, int nReserved);
    // The module's static data directory (group<G>/module<M>/ in the data directory), with a path
    // separator at its end; empty when there is none. nReserved is 1.
    static CString GetModuleStaticDataPath(EZrAbAppGroup eGroup, EZrAbModule eModule,
                                           int nReserved);
};
