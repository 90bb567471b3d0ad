// Who owns what variants, arrays and registered classes hand out.

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

TEST(ClassTable, TheNewestRegistrationAnswersUntilItEnds) {
    constexpr CLSID kClass{1, 2, 3, {4}};
    void* object = &object;
    const auto create = [&] {
        return CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object);
    };
    EXPECT_EQ(create(), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    const platform::ClassRegistration older(kClass, [](REFIID, void**) { return S_OK; });
    {
        const platform::ClassRegistration newer(kClass, [](REFIID, void**) { return E_FAIL; });
        EXPECT_EQ(create(), E_FAIL);
    }
    EXPECT_EQ(create(), S_OK);
}
