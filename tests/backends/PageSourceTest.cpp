// Taking a document's source: streams of every shape, each platform call failing once.

#include <gtest/gtest.h>

#include <ZrHbHtmlTools.h>

#include "support/FailingAutomation.h"
#include "support/ScriptedBrowser.h"

using namespace test_support;

namespace {

// Hands out its bytes in reads of at most `step`, then fails at read number `failAt`.
class ScriptedStream final : public ComObject<IStream> {
public:
    explicit ScriptedStream(std::string bytes, int failAt = -1)
        : m_bytes(std::move(bytes)), m_failAt(failAt) {}
    std::vector<ULONG> reads;

    HRESULT Read(void* buffer, ULONG count, ULONG* read) override {
        if (static_cast<int>(reads.size()) == m_failAt) return E_FAIL;
        *read = std::min<ULONG>(count, static_cast<ULONG>(m_bytes.size() - m_position));
        m_bytes.copy(static_cast<char*>(buffer), *read, m_position);
        m_position += *read;
        reads.push_back(*read);
        return S_OK;
    }
    HRESULT Write(const void*, ULONG, ULONG*) override { return E_FAIL; }
    HRESULT Clone(IStream**) override { return E_FAIL; }

private:
    std::string m_bytes;
    std::size_t m_position = 0;
    int m_failAt;
};

struct Source {
    DWORD result = 99;
    CByteBuffer page{1024, 256};
    CString strErr;
    DWORD nLength = 77;
};

Source SourceOf(const CComPtr<ScriptedDocument>& document, long readyState = 4, int fallback = 0) {
    Source source;
    CZrHbHtmlTools::GetSourceFromDocumentDispatchPtr(document.Get(), source.result, source.page,
                                                     source.strErr, source.nLength, readyState,
                                                     fallback);
    return source;
}

} // namespace

TEST(PageSource, DrainsAStreamInChunksUntilItIsEmpty) {
    const auto stream = MakeObject<ScriptedStream>(std::string(10'000, 'x'));
    CString page = "old";
    CString strErr = "old";
    DWORD nLength = 0;
    EXPECT_EQ(CZrHbHtmlTools::ReadFromIStream(stream.Get(), page, strErr, nLength), 0u);
    EXPECT_EQ(stream->reads, (std::vector<ULONG>{4096, 4096, 1808, 0}));
    EXPECT_EQ(nLength, 10'000u);
    EXPECT_EQ(page, CString(std::string(10'000, 'x')));
    EXPECT_EQ(strErr, "");

    EXPECT_EQ(CZrHbHtmlTools::ReadFromIStream(MakeObject<ScriptedStream>("").Get(), page, strErr,
                                              nLength),
              0u);
    EXPECT_EQ(nLength, 0u);
    EXPECT_TRUE(page.IsEmpty());
}

TEST(PageSource, TextLosesTheRestOfAChunkBehindANulAndBytesLoseNothing) {
    const std::string source = "ab" + std::string(1, '\0') + std::string(4093, 'c') + "next";
    CString text;
    CByteBuffer bytes(1024, 256);
    CString strErr;
    DWORD nLength = 0;
    CZrHbHtmlTools::ReadFromIStream(MakeObject<ScriptedStream>(source).Get(), text, strErr,
                                    nLength);
    EXPECT_EQ(text, "abnext");
    EXPECT_EQ(nLength, 6u);
    CZrHbHtmlTools::ReadFromIStream(MakeObject<ScriptedStream>(source).Get(), bytes, strErr,
                                    nLength);
    EXPECT_EQ(bytes.GetString(), CString(source));
    EXPECT_EQ(nLength, source.size());
}

TEST(PageSource, AFailingReadKeepsWhatWasReadAndTheLength) {
    CString page;
    CString strErr;
    DWORD nLength = 5;
    const auto stream = MakeObject<ScriptedStream>(std::string(5000, 'x'), 1);
    EXPECT_EQ(CZrHbHtmlTools::ReadFromIStream(stream.Get(), page, strErr, nLength), 22u);
    EXPECT_EQ(strErr, "Internal error: Stream->Read failed");
    EXPECT_EQ(page.GetLength(), 4096);
    EXPECT_EQ(nLength, 5u);
}

TEST(PageSource, TheReadyStateDecidesWhetherTheSourceIsFinal) {
    const auto document = MakeObject<ScriptedDocument>();
    document->source = "<html>";
    const Source complete = SourceOf(document, 4);
    EXPECT_EQ(complete.result, 0u);
    EXPECT_EQ(complete.strErr, "");
    EXPECT_EQ(complete.nLength, 6u);
    const Source loading = SourceOf(document, 3);
    EXPECT_EQ(loading.result, 10u);
    EXPECT_EQ(loading.strErr, "Read has not completed yet.");
    EXPECT_EQ(loading.page.GetString(), "<html>");
    EXPECT_EQ(SourceOf(document, 0).result, 0u);
}

TEST(PageSource, EachFailingCallHasItsText) {
    const auto document = MakeObject<ScriptedDocument>();
    document->failing = {"Save"};
    EXPECT_EQ(SourceOf(document).strErr,
              "Internal error: pIPersistStreamInit->Save failed (hr = 2147500037). You may need "
              "to reboot your machine.");
    document->failing = {};
    {
        FailingAutomation automation(FailingAutomation::Call::createStream);
        const Source source = SourceOf(document);
        EXPECT_EQ(source.result, 22u);
        EXPECT_EQ(source.strErr, "Internal error: CreateStream... failed.");
    }
    {
        FailingAutomation automation(FailingAutomation::Call::cloneStream);
        EXPECT_EQ(SourceOf(document).strErr, "Internal error: Clone failed.");
    }
    EXPECT_EQ(SourceOf(document).result, 0u);
}

TEST(PageSource, TheBodyFallbackStandsInForADocumentThatCannotWriteItsSource) {
    const auto document = MakeObject<ScriptedDocument>();
    document->outerHtml = "<BODY>\xFC</BODY>";
    document->failing = {"IPersistStreamInit"};
    const std::string first = "Internal error: QueryInterface(IID_IPersistStreamInit...) failed.";
    EXPECT_EQ(SourceOf(document).strErr, first.c_str());

    const Source body = SourceOf(document, 4, 2);
    EXPECT_EQ(body.result, 0u);
    EXPECT_EQ(body.strErr, "");
    EXPECT_EQ(body.nLength, 77u);
    EXPECT_EQ(body.page.GetString(),
              "<HTML><HEAD>\n<TITLE>Info: so far I can only read the body of this page - not the "
              "complete source!</TITLE>\n</HEAD>\n<BODY>\xFC</BODY>\n</HTML>\n");

    const std::pair<const char*, const char*> failures[] = {
        {"IHTMLDocument2", " and QueryInterface(IID_IHTMLDocument2) failed, too."},
        {"get_body", " and get_body() failed, too!"},
        {"get_outerHTML", " and get_outerHTML() failed, too!"},
    };
    for (const auto& [call, text] : failures) {
        document->failing = {"IPersistStreamInit", call};
        const Source source = SourceOf(document, 4, 1);
        EXPECT_EQ(source.result, 22u) << call;
        EXPECT_EQ(source.strErr, (first + text).c_str());
    }
}
