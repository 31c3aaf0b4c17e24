#include "XMLReader.h"

#include "XMLAttributeStore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace virlo::test
{
namespace
{

/// Writes down what it hears.
class Listener : public XMLReaderDelegate
{
public:
    void didStartElement(std::string_view name, const XMLAttributes& attributes) override
    {
        m_open.emplace_back(name);
        heard += "<" + std::string(name);
        for (const char* const* pair = attributes.pairs(); *pair != nullptr; pair += 2)
            heard += std::string(" ") + pair[0] + "=" + pair[1];
        heard += ">";
    }

    void didEndElement() override
    {
        heard += "</" + m_open.back() + ">";
        m_open.pop_back();
    }

    bool wantsText() const override { return wants; }

    void foundCDATA(std::string_view block) override { heard += "{" + std::string(block) + "}"; }

    void foundCharacters(std::string_view text) override { heard += "'" + std::string(text) + "'"; }

    bool wants = true;
    std::string heard;

private:
    std::vector<std::string> m_open;
};

struct Reading {
    std::string heard;
    OptionalError error;

    [[nodiscard]] long code() const { return error ? error->code : 0; }
};

Reading readingOf(const std::string& document, std::size_t piece = 1 << 20, bool wants = true)
{
    Listener listener;
    listener.wants = wants;
    XMLReader reader(listener);
    for (std::size_t at = 0; at < document.size(); at += piece)
        reader.read(std::string_view(document).substr(at, piece));
    reader.finish();
    return {listener.heard, reader.error()};
}

struct EventRow {
    const char* name;
    std::string document;
    std::string heard;
};

class XMLEvents : public testing::TestWithParam<EventRow>
{
};

TEST_P(XMLEvents, AreTheSameInWhateverPiecesTheDocumentArrives)
{
    for (const std::size_t piece : {std::size_t{1} << 20, std::size_t{1}, std::size_t{3}}) {
        const Reading reading = readingOf(GetParam().document, piece);
        EXPECT_EQ(reading.heard, GetParam().heard) << "in pieces of " << piece;
        EXPECT_FALSE(reading.error) << describe(*reading.error);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XMLEvents,
    testing::Values(
        EventRow{"ABlockIsOnePiece", "<a><![CDATA[one\ntwo]]] > &amp;\r\nthree]]></a>",
                 "<a>{one\ntwo]]] > &amp;\nthree}</a>"},
        EventRow{"TwoBlocksAreTwoPieces", "<a><![CDATA[1]]><![CDATA[]]><![CDATA[2]]></a>", "<a>{1}{}{2}</a>"},
        EventRow{"ARunIsOnePiece", "<a>one\n&lt;two&gt; &#x26;\r\nthree</a>", "<a>'one\n<two> &\nthree'</a>"},
        EventRow{"MarkupPartsARun", "<a>1<!-- c -->2<?p i?>3<b/>4<![CDATA[5]]>6</a>",
                 "<a>'1''2''3'<b></b>'4'{5}'6'</a>"},
        EventRow{"NamesKeepTheirPrefix", "<x:a xmlns:x='u' x:b='1' b='2'/>",
                 "<x:a xmlns:x=u x:b=1 b=2></x:a>"},
        EventRow{"EntitiesOfTheDocumentAreText", "<!DOCTYPE a [<!ENTITY e 'in <b/> side'>]><a>x&e;y</a>",
                 "<a>'xin '<b></b>' sidey'</a>"},
        EventRow{"NothingOutsideIsFetched",
                 "<!DOCTYPE a SYSTEM 'file:///etc/passwd' [<!ENTITY e SYSTEM 'file:///etc/passwd'>"
                 "<!ENTITY % p SYSTEM 'http://127.0.0.1:1/'>]><a>x&e;y</a>",
                 "<a>'xy'</a>"},
        EventRow{"AttributesOfTheTypeAreLeftOut", "<!DOCTYPE a [<!ATTLIST a c CDATA '1'>]><a b='2'/>",
                 "<a b=2></a>"}),
    [](const auto& row) { return row.param.name; });

struct FaultRow {
    const char* name;
    std::string document;
    long code = XMLReader::notWellFormed;
};

class XMLFaults : public testing::TestWithParam<FaultRow>
{
};

TEST_P(XMLFaults, EndInAnErrorThatSaysWhere)
{
    for (const std::size_t piece : {std::size_t{1} << 20, std::size_t{1}}) {
        const Reading reading = readingOf(GetParam().document, piece);
        ASSERT_TRUE(reading.error);
        EXPECT_EQ(reading.error->domain, XMLReader::errorDomain);
        EXPECT_EQ(reading.error->code, GetParam().code) << describe(*reading.error);
        EXPECT_FALSE(JSONReading::string(reading.error->userInfo, "Reason").value_or("").empty());
        EXPECT_GE(JSONReading::integer(reading.error->userInfo, "Line"), 1);
        EXPECT_GE(JSONReading::integer(reading.error->userInfo, "Column"), 1);
    }
}

std::string declarations(int count)
{
    std::string text = "<!DOCTYPE a [";
    for (int each = 0; each < count; ++each)
        text += "<!ENTITY e" + std::to_string(each) + " 'x'>";
    return text + "]><a/>";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XMLFaults,
    testing::Values(FaultRow{"Nothing", ""}, FaultRow{"TwoRoots", "<a/><b/>"},
                    FaultRow{"CutInABlock", "<a><![CDATA[text"}, FaultRow{"CutInATag", "<a b='"},
                    FaultRow{"Crossed", "<a><b></a></b>"},
                    FaultRow{"NullByte", std::string("<a>x\0y</a>", 10)},
                    FaultRow{"UnknownEncoding", "<?xml version='1.0' encoding='none-such'?><a/>"},
                    FaultRow{"WrongEncoding", "<?xml version='1.0' encoding='UTF-16'?><a/>"},
                    FaultRow{"NotInItsEncoding", "<?xml version='1.0' encoding='UTF-8'?><a>\xe9</a>"},
                    FaultRow{"UnknownEntity", "<a>&none;</a>"},
                    FaultRow{"ManyDeclarations", declarations(XMLReader::maximumDeclarations + 1),
                             XMLReader::tooManyDeclarations}),
    [](const auto& row) { return row.param.name; });

TEST(XMLReader, KeepsToItsLimits)
{
    EXPECT_FALSE(readingOf(declarations(XMLReader::maximumDeclarations)).error);

    const std::string text(XMLReader::maximumPiece + 1, 'x');
    EXPECT_EQ(readingOf("<a>" + text + "</a>").code(), XMLReader::pieceTooLong);
    EXPECT_EQ(readingOf("<a><![CDATA[" + text + "]]></a>", 1000).code(), XMLReader::pieceTooLong);
    const std::string twice = text + text;
    EXPECT_EQ(readingOf("<a b='" + twice + "'/>", 1000).code(), XMLReader::pieceTooLong);
    EXPECT_EQ(readingOf("<a><!--" + twice + "--></a>").code(), XMLReader::pieceTooLong);
    EXPECT_FALSE(readingOf("<a>" + text + "</a>", 1000, false).error)
        << "text that nobody wants has no limit";
}

TEST(XMLReader, IsStoppedFromInsideACall)
{
    class Refuser : public Listener
    {
    public:
        void didStartElement(std::string_view name, const XMLAttributes& attributes) override
        {
            Listener::didStartElement(name, attributes);
            if (name == "b")
                reader->fail(XMLReader::refused, "enough");
        }

        XMLReader* reader = nullptr;
    } refuser;

    XMLReader reader(refuser);
    refuser.reader = &reader;
    EXPECT_FALSE(reader.read("<a>x<b/><c/>"));
    EXPECT_FALSE(reader.read("</a>"));
    EXPECT_FALSE(reader.finish());
    EXPECT_EQ(refuser.heard, "<a>'x'<b>");
    ASSERT_TRUE(reader.error());
    EXPECT_EQ(reader.error()->code, XMLReader::refused);
}

TEST(XMLReader, BringsNothingOfADocumentIntoTheNext)
{
    const auto heard = [](const std::string& document) {
        Listener listener;
        XMLReader reader(listener);
        return reader.finish(document) ? listener.heard : "refused";
    };
    EXPECT_EQ(heard("<!DOCTYPE a [<!ENTITY e 'text'><!ATTLIST a b CDATA 'c'>]><a>&e;</a>"), "<a>'text'</a>");
    EXPECT_EQ(heard("<a>&e;</a>"), "refused");
    EXPECT_EQ(heard("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>"), "<a>'\xC3\xA9'</a>");
    EXPECT_EQ(heard("<a>\xC3\xA9</a>"), "<a>'\xC3\xA9'</a>");
    EXPECT_EQ(heard("<a>\xE9</a>"), "refused");
    {
        Listener listener;
        XMLReader unfinished(listener);
        EXPECT_TRUE(unfinished.read("<a><b>text"));
        EXPECT_EQ(heard("<c/>"), "<c></c>") << "beside one that is still at work";
    }
    EXPECT_EQ(heard("<d/>"), "<d></d>");
}

TEST(XMLAttributeStore, OutlivesWhatItWasGivenAndCanBeUsedAgain)
{
    XMLAttributeStore store;
    EXPECT_FALSE(store.attributes().value("a"));
    {
        const XMLAttributeStore first{{"a", "1"}, {"ab", ""}};
        store.assign(first.attributes());
    }
    EXPECT_EQ(store.attributes().value("a"), "1");
    EXPECT_EQ(store.attributes().value("ab"), "");
    store.assign(XMLAttributeStore{{"c", "2"}}.attributes());
    EXPECT_FALSE(store.attributes().value("a"));
    EXPECT_EQ(store.attributes().value("c"), "2");
    const XMLAttributeStore others{{"a", "1"}, {"b", std::string(100, 'x').c_str()}, {"c", "3"}};
    const char* const wanted[] = {"c", "d", "b"};
    store.assign(others.attributes(), wanted);
    EXPECT_FALSE(store.attributes().value("a"));
    EXPECT_EQ(store.attributes().value("b"), std::string(100, 'x'));
    EXPECT_EQ(store.attributes().value("c"), "3");
}

} // namespace
} // namespace virlo::test
