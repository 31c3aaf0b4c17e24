#include "XMLReader.h"

#define XML_DTD // the header declares its limits on entity expansion only then
#include <expat.h>
#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <new>
#include <string_view>
#include <strings.h>

namespace virlo
{

namespace
{
constexpr float maximumAmplification = 2;
constexpr unsigned long long freeExpansion = 1ULL << 20;

/// A document chooses the name: only these families are passed on to the system's converter.
bool isSingleByteEncoding(std::string_view name)
{
    for (const std::string_view family : {"ISO-8859-", "windows-125", "KOI8-"}) {
        if (name.size() <= family.size() + 2 && ::strncasecmp(name.data(), family.data(), family.size()) == 0)
            return std::all_of(name.begin() + family.size(), name.end(),
                               [](unsigned char letter) { return std::isalnum(letter) != 0; });
    }
    return false;
}

/// The Unicode character of each byte, -1 where a byte has none.
bool fillCharacterTable(const char* name, int (&table)[256])
{
    if (!isSingleByteEncoding(name))
        return false;
    const iconv_t converter = ::iconv_open("UTF-32LE", name);
    if (converter == iconv_t(-1)) // NOLINT(performance-no-int-to-ptr): how iconv_open reports a failure
        return false;
    for (int byte = 0; byte < 256; ++byte) {
        char input = static_cast<char>(byte);
        unsigned char output[4] = {};
        char* from = &input;
        char* to = reinterpret_cast<char*>(output);
        std::size_t inputLeft = 1;
        std::size_t outputLeft = sizeof output;
        const bool converted = ::iconv(converter, &from, &inputLeft, &to, &outputLeft) != std::size_t(-1);
        table[byte] = converted && outputLeft == 0 ? output[0] | output[1] << 8 | output[2] << 16 : -1;
        ::iconv(converter, nullptr, nullptr, nullptr, nullptr);
    }
    ::iconv_close(converter);
    return true;
}
} // namespace

struct XMLReader::Callbacks {
    static XMLReader& of(void* reader) { return *static_cast<XMLReader*>(reader); }

    static void XMLCALL startElement(void* self, const char* name, const char** pairs)
    {
        XMLReader& reader = of(self);
        reader.endCharacters();
        if (reader.m_error)
            return;
        // The pairs after these are default values: a short document type can declare some for every element.
        const int count = XML_GetSpecifiedAttributeCount(reader.m_parser.get());
        XMLAttributes attributes;
        attributes.reserve(static_cast<std::size_t>(count) / 2);
        for (int index = 0; index < count; index += 2)
            attributes.emplace_back(pairs[index], pairs[index + 1]);
        reader.m_delegate.didStartElement(name, std::move(attributes));
    }

    static void XMLCALL endElement(void* self, const char*)
    {
        XMLReader& reader = of(self);
        reader.endCharacters();
        if (!reader.m_error)
            reader.m_delegate.didEndElement();
    }

    static void XMLCALL characters(void* self, const char* text, int length)
    {
        of(self).m_text.append(text, static_cast<std::size_t>(length));
    }

    static void XMLCALL startSection(void* self) { of(self).endCharacters(); }

    static void XMLCALL endSection(void* self)
    {
        XMLReader& reader = of(self);
        if (!reader.m_error)
            reader.m_delegate.foundCDATA(reader.m_text);
        reader.m_text.clear();
    }

    static void XMLCALL comment(void* self, const char*) { of(self).endCharacters(); }

    static void XMLCALL instruction(void* self, const char*, const char*) { of(self).endCharacters(); }

    static void XMLCALL entity(void* self, const char*, int, const char*, int, const char*, const char*,
                               const char*, const char*)
    {
        of(self).countDeclaration();
    }

    static void XMLCALL attributeList(void* self, const char*, const char*, const char*, const char*, int)
    {
        of(self).countDeclaration();
    }

    static int XMLCALL encoding(void*, const char* name, XML_Encoding* encoding)
    {
        return fillCharacterTable(name, encoding->map) ? XML_STATUS_OK : XML_STATUS_ERROR;
    }
};

void XMLReader::ParserDeleter::operator()(XML_ParserStruct* parser) const
{
    XML_ParserFree(parser);
}

XMLReader::XMLReader(XMLReaderDelegate& delegate) : m_delegate(delegate), m_parser(XML_ParserCreate(nullptr))
{
    XML_ParserStruct* const parser = m_parser.get();
    if (parser == nullptr)
        throw std::bad_alloc();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, &Callbacks::startElement, &Callbacks::endElement);
    XML_SetCharacterDataHandler(parser, &Callbacks::characters);
    XML_SetCdataSectionHandler(parser, &Callbacks::startSection, &Callbacks::endSection);
    XML_SetCommentHandler(parser, &Callbacks::comment);
    XML_SetProcessingInstructionHandler(parser, &Callbacks::instruction);
    XML_SetEntityDeclHandler(parser, &Callbacks::entity);
    XML_SetAttlistDeclHandler(parser, &Callbacks::attributeList);
    XML_SetUnknownEncodingHandler(parser, &Callbacks::encoding, nullptr);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, maximumAmplification);
    XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, freeExpansion);
}

XMLReader::~XMLReader() = default;

bool XMLReader::parse(std::string_view document)
{
    if (document.size() > maximumDocumentSize) {
        fail(documentTooLong, "the document is too long");
        return false;
    }
    const auto status =
        XML_Parse(m_parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
    if (status != XML_STATUS_OK) {
        const XML_Error code = XML_GetErrorCode(m_parser.get());
        fail(code == XML_ERROR_AMPLIFICATION_LIMIT_BREACH ? expandsTooMuch : notWellFormed,
             XML_ErrorString(code));
    }
    return !m_error;
}

void XMLReader::fail(ErrorCode code, const std::string& reason)
{
    if (m_error)
        return;
    XML_ParserStruct* const parser = m_parser.get();
    m_error = Error{errorDomain, code,
                    JSON{{"Reason", reason},
                         {"Line", XML_GetCurrentLineNumber(parser)},
                         {"Column", XML_GetCurrentColumnNumber(parser) + 1}}};
    XML_StopParser(parser, XML_FALSE); // refused, without harm, where nothing is being read
}

void XMLReader::endCharacters()
{
    if (m_text.empty())
        return;
    if (!m_error)
        m_delegate.foundCharacters(m_text);
    m_text.clear();
}

void XMLReader::countDeclaration()
{
    if (++m_declarations > maximumDeclarations)
        fail(tooManyDeclarations, "the document type has too many declarations");
}

} // namespace virlo
