#include "JSONReading.h"
#include "RowName.h"
#include "XMLReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace virlo::test
{
namespace
{

/// Writes the events as one text.
class Listener : public XMLReaderDelegate
{
public:
    void didStartElement(std::string_view name, XMLAttributes attributes) override
    {
        m_open.emplace_back(name);
        events += "<" + std::string(name);
        for (const auto& [attribute, value] : attributes)
            events += " " + attribute + "=" + value;
        events += ">";
    }

    void didEndElement() override
    {
        events += "</" + m_open.back() + ">";
        m_open.pop_back();
    }

    void foundCDATA(std::string_view block) override { events += "{" + std::string(block) + "}"; }

    void foundCharacters(std::string_view text) override { events += "'" + std::string(text) + "'"; }

    std::string events;

private:
    std::vector<std::string> m_open;
};

struct EventRow {
    const char* name;
    std::string document;
    std::string events;
};

using XMLEvents = testing::TestWithParam<EventRow>;

TEST_P(XMLEvents, AreReportedInDocumentOrder)
{
    Listener listener;
    XMLReader reader(listener);
    EXPECT_TRUE(reader.parse(GetParam().document)) << describe(*reader.error());
    EXPECT_EQ(listener.events, GetParam().events);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XMLEvents,
    testing::Values(
        EventRow{"SectionInOnePiece", "<a><![CDATA[one\ntwo]]] > &amp;\r\nthree]]></a>",
                 "<a>{one\ntwo]]] > &amp;\nthree}</a>"},
        EventRow{"TwoSections", "<a><![CDATA[1]]><![CDATA[]]><![CDATA[2]]></a>", "<a>{1}{}{2}</a>"},
        EventRow{"TextInOnePiece", "<a>one\n&lt;two&gt; &#x26;\r\nthree</a>", "<a>'one\n<two> &\nthree'</a>"},
        EventRow{"TextSplitByMarkup", "<a>1<!-- c -->2<?p i?>3<b/>4<![CDATA[5]]>6</a>",
                 "<a>'1''2''3'<b></b>'4'{5}'6'</a>"},
        EventRow{"NamesWithPrefix", "<x:a xmlns:x='u' x:b='1' b='2'/>", "<x:a xmlns:x=u x:b=1 b=2></x:a>"},
        EventRow{"EntitiesOfTheDocument", "<!DOCTYPE a [<!ENTITY e 'in <b/> side'>]><a>x&e;y</a>",
                 "<a>'xin '<b></b>' sidey'</a>"},
        EventRow{"NothingOutsideTheDocument",
                 "<!DOCTYPE a SYSTEM 'file:///etc/passwd' [<!ENTITY e SYSTEM 'file:///etc/passwd'>"
                 "<!ENTITY % p SYSTEM 'http://127.0.0.1:1/'>]><a>x&e;y</a>",
                 "<a>'xy'</a>"},
        EventRow{"NoDefaultAttributes", "<!DOCTYPE a [<!ATTLIST a c CDATA '1'>]><a b='2'/>", "<a b=2></a>"},
        EventRow{"Latin1", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", "<a>'\xC3\xA9'</a>"},
        EventRow{"Cyrillic", "<?xml version='1.0' encoding='koi8-r'?><a>\xC1</a>", "<a>'\xD0\xB0'</a>"}),
    rowName);

struct FaultRow {
    const char* name;
    std::string document;
    long code = XMLReader::notWellFormed;
};

using XMLFaults = testing::TestWithParam<FaultRow>;

TEST_P(XMLFaults, EndInAnErrorWithAPosition)
{
    Listener listener;
    XMLReader reader(listener);
    EXPECT_FALSE(reader.parse(GetParam().document));
    ASSERT_TRUE(reader.error());
    EXPECT_EQ(reader.error()->domain, XMLReader::errorDomain);
    EXPECT_EQ(reader.error()->code, GetParam().code) << describe(*reader.error());
    EXPECT_FALSE(JSONReading::string(reader.error()->userInfo, "Reason").value_or("").empty());
    EXPECT_GE(JSONReading::integer(reader.error()->userInfo, "Line"), 1);
    EXPECT_GE(JSONReading::integer(reader.error()->userInfo, "Column"), 1);
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
    testing::Values(FaultRow{"Empty", ""}, FaultRow{"CutInASection", "<a><![CDATA[text"},
                    FaultRow{"UnknownEncoding", "<?xml version='1.0' encoding='none-such'?><a/>"},
                    FaultRow{"EncodingWithAPath", "<?xml version='1.0' encoding='windows-../'?><a/>"},
                    FaultRow{"ManyDeclarations", declarations(XMLReader::maximumDeclarations + 1),
                             XMLReader::tooManyDeclarations},
                    FaultRow{"TooLong", "<a>" + std::string(XMLReader::maximumDocumentSize, ' ') + "</a>",
                             XMLReader::documentTooLong}),
    rowName);

} // namespace
} // namespace virlo::test
