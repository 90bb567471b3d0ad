#include <ZrHbDataTransmit.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <platform/LastError.h>

#include "compose/Boundary.h"
#include "compose/MultipartBody.h"
#include "compose/ZrHbDataTransmit_Impl.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

namespace {

using Data = CZrHbDataTransmit;
constexpr auto kPublic = Data::eDataConfidentialityType_Public;
constexpr auto kSecret = Data::eDataConfidentialityType_Confidential;
constexpr auto kOther = Data::EZrHbDataConfidentialityType(2);
constexpr auto kText = Data::eContentType_TextPlain;
constexpr auto kMasked = Data::eRequestDataType_Masked;

class DataTransmit : public testing::Test {
protected:
    CString PathOf(const char* name) { return home.Path(name).c_str(); }

    test_support::ManualClock clock;
    platform::ScopedService<platform::Clock> installed{clock};
    test_support::TemporaryHome home;
    Data form;
};

struct FormWithoutState : Data {
    FormWithoutState() { DeleteImpl(); }
};

TEST_F(DataTransmit, EmptySetsGiveNothing) {
    EXPECT_EQ(form.GetURLEncodedData(1) + form.GetMultipartData(), "");
    FormWithoutState none;
    static_cast<Data&>(none) = form;
    EXPECT_EQ(none.SetField("a", "1", kPublic) + none.SetFile("a", "b", kText, kPublic), 0);
    EXPECT_EQ(none.RemoveField("a"), 0);
    EXPECT_EQ(Data(none).GetURLEncodedHeader() + none.GetMultipartHeader(), "");
    EXPECT_EQ(none.GetMultipartData() + none.GetURLEncodedData(1) + none.GetLastError(), "");
}

TEST_F(DataTransmit, ComposesBothEncodingsPlainAndMasked) {
    home.WriteFile("pic.tar.gz", std::string("G\0F", 3));
    home.WriteFile("notes", "n&n\r\n");
    form.SetField("a%s", "x y", kPublic);
    form.SetFile("pic\"\r\n", PathOf("pic.tar.gz"), Data::eContentType_OctetStream, kSecret);
    form.SetFile("n", PathOf("notes"), Data::EZrHbContentType(7), kOther);
    form.SetField("b=", CString("1&2\0hidden", 10), kSecret);
    form.SetField(CString("e\0x", 3), "", kPublic);
    EXPECT_EQ(form.GetURLEncodedHeader(), "Content-Type: application/x-www-form-urlencoded");
    EXPECT_EQ(form.GetURLEncodedData(1), "?a%s=x+y&pic\"\r\n=G&n=n%26n%0D%0A&b==1%262&e=");
    EXPECT_EQ(form.GetURLEncodedData(kMasked, 2), "a%s=x+y&pic\"\r\n=[...]&n=???&b==[...]&e=");
    EXPECT_EQ(form.GetURLEncodedData(Data::EZrHbRequestDataType(2), 0),
              "a%s=???&pic\"\r\n=???&n=???&b==???&e=???");

    form.SetBoundary("1&2"); // a boundary of the caller's may occur in the data
    const auto body = [](const char* a, const char* pic, const char* n, const char* b) {
        const CString disposition = "--1&2\r\nContent-Disposition: form-data; name=\"";
        return disposition + "a%s\"\r\n\r\n" + a + "\r\n" + disposition +
               "pic\"\r\n\"; filename=\"pic.tar.gz\"\r\nContent-Type: application/octet-stream" +
               "\r\n\r\n" + pic + "\r\n" + disposition +
               "n\"; filename=\"notes\"\r\nContent-Type: text/plain\r\n\r\n" + n + "\r\n" +
               disposition + "b=\"\r\n\r\n" + b + "\r\n" + disposition +
               "e\"\r\n\r\n\r\n--1&2--\r\n";
    };
    EXPECT_EQ(form.GetMultipartData(), body("x y", "G", "n&n\r\n", "1&2"));
    EXPECT_EQ(form.GetMultipartData(kMasked), body("x y", "[...]", "???", "[...]"));
    EXPECT_EQ(form.GetMultipartHeader(), "Content-Type: multipart/form-data; boundary=1&2");
    EXPECT_EQ(clock.SleepCount(), 0u);
}

TEST_F(DataTransmit, NamesAreUniqueAndKeepTheirPlaces) {
    home.WriteFile("f", "file");
    for (const char* name : {"a", "A", "b", "c"})
        form.SetField(name, "1", kPublic);
    form.SetField("a", "2", kPublic);
    form.SetFile("b", PathOf("f"), kText, kPublic);
    EXPECT_EQ(form.GetURLEncodedData(0), "a=2&A=1&b=file&c=1");
    EXPECT_EQ(form.RemoveField("absent") + form.RemoveField("") + form.RemoveField("A"), 3);
    form.SetField("b", "3", kPublic);
    form.SetField("A", "4", kPublic);

    Data copy(form);
    copy.SetField("b", "copy", kPublic);
    copy.RemoveField("a");
    form = form;
    EXPECT_EQ(form.GetURLEncodedData(0), "a=2&b=3&c=1&A=4");
    EXPECT_EQ(copy.GetURLEncodedData(0), "b=copy&c=1&A=4");
    form.RemoveAllFields();
    EXPECT_EQ(form.GetURLEncodedData(0), "");
}

TEST_F(DataTransmit, ManyFieldsTakeLinearTime) {
    constexpr int kCount = 100'000;
    const auto start = std::chrono::steady_clock::now();
    const auto name = [](int i) { return CString(std::to_string(i)); };
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(form.SetField(name(i), "1", kPublic), 1);
    for (int i = 0; i + 1 < kCount; ++i)
        form.RemoveField(name(i));
    EXPECT_EQ(form.GetURLEncodedData(0), "99999=1");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(DataTransmit, FailuresLeaveTheirTextUntilItIsTaken) {
    EXPECT_EQ(form.SetField(CString("\0x", 2), "1", kPublic), 0);
    form.SetField("a", "1", kPublic);
    EXPECT_EQ(form.GetLastError(), "Fieldname is not specified: This argument cannot be empty!");
    const auto setFile = [&](const char* name, const CString& path) {
        return form.SetFile(name, path, kText, kPublic);
    };
    EXPECT_EQ(setFile("", "p%d"), 0);
    EXPECT_EQ(form.GetLastError(), "Fieldname is not specified!\nFilename: p%d\nField name: \n"
                                   "This argument cannot be empty!");
    EXPECT_EQ(setFile("n", ""), 0);
    EXPECT_EQ(setFile("n", PathOf("gone")), 0);
    EXPECT_EQ(form.GetLastError(), "Cannot read file '" + PathOf("gone") +
                                       "': The system cannot find the file specified.");
    EXPECT_EQ(setFile("n", home.Path().c_str()), 0);
    EXPECT_EQ(form.GetLastError(), "Cannot read file '" + PathOf("") + "': It is a directory.");

    home.WriteFile("empty", "");
    EXPECT_EQ(setFile("a", PathOf("empty")), 1);
    EXPECT_EQ(form.GetURLEncodedData(0), "a=1");
    EXPECT_EQ(form.GetMultipartHeader(), "Content-Type: form-data");
    SetLastError(ERROR_DISK_FULL);
    EXPECT_EQ(form.GetLastError(), platform::SystemErrorText(ERROR_DISK_FULL));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);

    CZrHbDataTransmit_Impl impl;
    EXPECT_EQ(impl.AddFieldRecord(nullptr), 0);
    EXPECT_EQ(impl.TakeLastError(), "Invalid pointer to structure: No data to add!");
}

TEST_F(DataTransmit, BoundariesLastUntilTheSetGrows) {
    home.WriteFile("f", "file");
    form.SetFile("f", PathOf("f"), kText, kPublic);
    const auto isAnnounced = [&] {
        return form.GetMultipartHeader().Find("; boundary=" + form.GetBoundary()) >= 0;
    };
    EXPECT_TRUE(isAnnounced());
    const CString early = form.GetBoundary();
    form.GetMultipartData();
    const CString verified = form.GetBoundary();
    EXPECT_NE(verified, early) << "a boundary without a test counts as none";
    EXPECT_THAT(verified.GetString(), testing::MatchesRegex("[0-9A-Za-z]{21}"));
    EXPECT_TRUE(isAnnounced());

    form.RemoveField("f");
    EXPECT_GE(form.GetMultipartHeader().Find("multipart/form-data"), 0) << "it once had a file";
    Data copy;
    copy = form;
    copy.GetMultipartData(kMasked);
    EXPECT_EQ(copy.GetBoundary(), verified) << "neither a removal nor a copy asks for another";
    EXPECT_EQ(clock.Sleeps(), (std::vector<DWORD>{1000, 1000}));

    form.SetField("a", verified, kSecret);
    form.GetMultipartData(kMasked); // the boundary serves the plain data as well
    EXPECT_EQ(form.GetMultipartData().Find("--" + verified), -1);
    EXPECT_EQ(copy.GetBoundary(), verified);
    form.SetBoundary("own");
    form.SetField("b", "own", kPublic);
    form.GetMultipartData();
    EXPECT_EQ(form.GetBoundary(), "own");
    EXPECT_EQ(clock.SleepCount(), 3u);
}

// Gives boundaries of its own, each once.
struct ScriptedBoundaries : BoundarySource {
    std::string Draw(unsigned nAttempt) override { return boundaries.at(nAttempt); }
    std::vector<std::string> boundaries;
};

TEST_F(DataTransmit, BoundariesThatOccurInTheDataAreReplaced) {
    ScriptedBoundaries source;
    const platform::ScopedService<BoundarySource> scoped(source);
    for (const char ch : {'n', 'f', 'v', 's', 'x'})
        source.boundaries.emplace_back(21, ch);
    const auto text = [&](std::size_t i) { return CString(source.boundaries[i]); };
    home.WriteFile(text(1).View(), "content");
    form.SetField(text(0), "1", kPublic);
    form.SetFile("f", PathOf(text(1)), kText, kPublic);
    form.SetField("v", ">" + text(2), kPublic);
    form.SetField("s", text(3), kSecret);
    form.GetMultipartData(kMasked); // the boundary serves the plain data as well
    EXPECT_EQ(form.GetBoundary(), text(4));
}

TEST(Boundary, AnAttemptMakesItAnotherWhenTheClockDoesNot) {
    std::vector<std::string> drawn;
    for (const unsigned attempt : {0U, 0U, 1U}) {
        test_support::ManualClock standing;
        const platform::ScopedService<platform::Clock> scoped(standing);
        drawn.emplace_back();
        for (int second = 0; second < 20; ++second) // enough for every character to be drawn
            drawn.back() += BoundarySource::Real().Draw(attempt);
        EXPECT_THAT(drawn.back(), testing::MatchesRegex("[0-9A-Za-z]+"));
    }
    EXPECT_EQ(drawn[0], drawn[1]);
    EXPECT_NE(drawn[0], drawn[2]);
}

TEST(MultipartBody, SearchesTheBoundaryAsTheWholeBodyWouldBeSearched) {
    const std::string boundary = "aabaabaaabaabaabaaabX";
    std::mt19937 random(7);
    const auto upTo = [&](std::size_t limit) { return random() % (limit + 1); };
    // Long pieces of the boundary beside each other.
    const auto text = [&] {
        std::string pieces;
        for (std::size_t count = upTo(3); count > 0; --count)
            pieces += boundary.substr(upTo(2) ? 0 : upTo(20), upTo(2) ? 21 : upTo(20));
        return CString(pieces);
    };
    int found = 0;
    for (int round = 0; round < 3000; ++round) {
        FieldList fields;
        for (const char* prefix : {"0", "1"}) {
            DataField field;
            field.strName = prefix + text();
            field.strFileName = upTo(1) ? text() : CString();
            field.value = text().GetString();
            fields.Put(std::move(field));
        }
        const CString body = MultipartBody::Compose(fields, "", Data::eRequestDataType_Plain);
        const bool occurs = body.Find(boundary.c_str()) >= 0;
        ASSERT_EQ(MultipartBody::Holds(fields, boundary), occurs) << body.GetString();
        found += occurs;
    }
    EXPECT_TRUE(found > 100 && found < 2900) << found;
}

} // namespace
