// Creating objects, streams, connection points.
#pragma once

#include <functional>

#include "Export.h"
#include "Services.h"
#include "Unknown.h"
#include "Variant.h"

ZRHB_EXPORT_BEGIN

struct IStream : IUnknown {
    static constexpr IID Iid{0x0000000C, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    // Reads up to nCount bytes from the current position; S_OK also at the end, with 0 bytes.
    virtual HRESULT Read(void* pBuffer, ULONG nCount, ULONG* pnRead) = 0;
    virtual HRESULT Write(const void* pData, ULONG nCount, ULONG* pnWritten) = 0;
    // A stream over the same content with a position of its own, starting at this one's.
    virtual HRESULT Clone(IStream** ppStream) = 0;

protected:
    ~IStream() = default;
};

struct IPersistStreamInit : IUnknown {
    static constexpr IID Iid{
        0x7FD52380, 0x4E07, 0x101B, {0xAE, 0x2D, 0x08, 0x00, 0x2B, 0x2E, 0xC7, 0x13}};
    virtual HRESULT Save(IStream* pStream, BOOL bClearDirty) = 0;

protected:
    ~IPersistStreamInit() = default;
};
inline constexpr const IID& IID_IPersistStreamInit = IPersistStreamInit::Iid;

struct IConnectionPoint : IUnknown {
    static constexpr IID Iid{
        0xB196B286, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
    // Holds a reference on the sink until Unadvise. The cookie is never 0.
    virtual HRESULT Advise(IUnknown* pSink, DWORD* pdwCookie) = 0;
    virtual HRESULT Unadvise(DWORD dwCookie) = 0;

protected:
    ~IConnectionPoint() = default;
};

struct IConnectionPointContainer : IUnknown {
    static constexpr IID Iid{
        0xB196B284, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};
    virtual HRESULT FindConnectionPoint(REFIID iid, IConnectionPoint** ppPoint) = 0;

protected:
    ~IConnectionPointContainer() = default;
};

constexpr DWORD CLSCTX_INPROC_SERVER = 1;
constexpr DWORD CLSCTX_INPROC_HANDLER = 2;
constexpr DWORD CLSCTX_LOCAL_SERVER = 4;

namespace platform {

// What the documented functions below ask; a test installs one that forwards all but one call.
class AutomationService {
public:
    virtual ~AutomationService() = default;
    static AutomationService& Real();
    virtual HRESULT Initialize() = 0; // OleInitialize
    virtual HRESULT CreateInstance(REFCLSID clsid, DWORD dwContext, REFIID iid,
                                   void** ppObject) = 0;
    virtual HRESULT CreateMemoryStream(IStream** ppStream) = 0;
    virtual HRESULT AttachControl(IUnknown* pControl, HWND hWnd, IUnknown** ppContainer) = 0;
};

// Makes an object of a class on the calling thread; empty with a failure code otherwise.
using ObjectFactory = std::function<HRESULT(REFIID iid, void** ppObject)>;

// Registers a class with the process-wide table; the newest registration of a class answers
// first. The registration ends with the object.
class ClassRegistration {
public:
    ClassRegistration(REFCLSID clsid, ObjectFactory factory);
    ~ClassRegistration();
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;

private:
    int m_token;
};

} // namespace platform

HRESULT CoInitialize(void* pReserved);
HRESULT OleInitialize(void* pReserved);
// REGDB_E_CLASSNOTREG when nobody offers the class in one of the contexts. pOuter must be null.
HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* pOuter, DWORD dwClsContext, REFIID iid,
                         void** ppObject);
// A stream on memory of its own; hGlobal must be null, the memory goes with the last stream.
HRESULT CreateStreamOnHGlobal(void* hGlobal, BOOL bDeleteOnRelease, IStream** ppStream);
// Puts a control into a window: the window's container holds a reference on it until the window
// is destroyed. *ppContainer receives a reference on the container.
HRESULT AtlAxAttachControl(IUnknown* pControl, HWND hWnd, IUnknown** ppContainer);
// Lets the framework host controls; pManager must be null. May be called any number of times.
void AfxEnableControlContainer(void* pManager = nullptr);
// Connects a sink with a source's events of one interface; with bRefCount the connection holds a
// reference on the sink.
BOOL AfxConnectionAdvise(IUnknown* pSource, REFIID iid, IUnknown* pSink, BOOL bRefCount,
                         DWORD* pdwCookie);
BOOL AfxConnectionUnadvise(IUnknown* pSource, REFIID iid, IUnknown* pSink, BOOL bRefCount,
                           DWORD dwCookie);

ZRHB_EXPORT_END
