// Variants, arrays, streams and the class table.

#include <gtest/gtest.h>

#include <platform/Automation.h>

#include "support/ThrownBy.h"

namespace {

class Probe final : public ComObject<IDispatch> {
public:
    explicit Probe(bool& gone) : m_gone(gone) {}
    ~Probe() override { m_gone = true; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return S_OK;
    }

private:
    bool& m_gone;
};

constexpr CLSID kProbeClass{1, 2, 3, {4}};

} // namespace

TEST(Variant, FreesWhatItOwnsAndLeavesReferencesAlone) {
    bool isGone = false;
    {
        const auto probe = MakeObject<Probe>(isGone);
        COleVariant owner;
        owner.vt = VT_DISPATCH;
        owner.pdispVal = CComPtr<Probe>(probe).Detach();
        VARIANT reference;
        reference.vt = VT_BYREF | VT_VARIANT;
        reference.pvarVal = &owner;
        EXPECT_EQ(VariantClear(&reference), S_OK);
        EXPECT_EQ(owner.vt, VT_DISPATCH);
        VariantClear(&owner);
        EXPECT_EQ(owner.vt, VT_EMPTY);
        EXPECT_FALSE(isGone);
    }
    EXPECT_TRUE(isGone);
}

TEST(SafeArray, HoldsBytesOnly) {
    COleSafeArray array;
    array.CreateOneDim(VT_UI1, 3, "a\0b");
    array.CreateOneDim(VT_UI1, 4, "a\0bc"); // replaces
    LONG last = 0;
    EXPECT_EQ(SafeArrayGetUBound(array.parray, 1, &last), S_OK);
    EXPECT_EQ(last, 3);
    EXPECT_EQ(test_support::ThrownBy([&] { array.CreateOneDim(VT_I4, 1, "abcd"); }), "8007000e");
}

TEST(MemoryStream, ClonesShareTheContentAndKeepTheirOwnPosition) {
    CComPtr<IStream> stream;
    CComPtr<IStream> clone;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, &stream), S_OK);
    ASSERT_EQ(stream->Clone(&clone), S_OK);
    ULONG count = 0;
    EXPECT_EQ(stream->Write("hello", 5, &count), S_OK);
    EXPECT_EQ(count, 5u);
    stream.Release();
    char buffer[8] = {};
    EXPECT_EQ(clone->Read(buffer, 8, &count), S_OK);
    EXPECT_EQ(std::string_view(buffer, count), "hello");
}

TEST(ClassTable, TheNewestRegistrationAnswersUntilItEnds) {
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(kProbeClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    bool isGone = false;
    const platform::ClassRegistration older(kProbeClass, [&](REFIID iid, void** result) {
        return MakeObject<Probe>(isGone)->QueryInterface(iid, result);
    });
    {
        const platform::ClassRegistration newer(kProbeClass,
                                                [](REFIID, void**) { return E_OUTOFMEMORY; });
        EXPECT_EQ(CoCreateInstance(kProbeClass, nullptr, 1, IID_IDispatch, &object), E_OUTOFMEMORY);
    }
    CComPtr<IDispatch> probe;
    EXPECT_EQ(
        CoCreateInstance(kProbeClass, nullptr, 1, IID_IDispatch, reinterpret_cast<void**>(&probe)),
        S_OK);
    probe.Release();
    EXPECT_TRUE(isGone);
}
