#include "XMLReader.h"

#include "SingleByteEncoding.h"

#define XML_DTD // the header shows its limits on expansion only then
#include <expat.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <new>
#include <random>
#include <utility>

namespace virlo
{

namespace
{
// expat takes twice as much room for what is left of a piece. So little stays near the processor, and a long
// token is seen to be too long before it has been copied often.
constexpr std::size_t slice = std::size_t{32} << 10;
constexpr float maximumAmplification = 2;
constexpr unsigned long long freeExpansion = 1ULL << 20;
constexpr std::size_t commonText = 512;

/// A parser that has read a small document and waits for the next: making one anew costs a fifth of reading
/// such a document. One at most, for the process's life.
std::atomic<XML_Parser> spareParser{nullptr};
constexpr std::size_t smallDocument = std::size_t{64} << 10; // what its parser has grown to is worth keeping

XML_Parser takeParser()
{
    const XML_Parser spare = spareParser.exchange(nullptr);
    if (spare == nullptr)
        return XML_ParserCreate(nullptr);
    XML_ParserReset(spare, nullptr); // forgets all but its memory: handlers, limits and salt are set anew
    return spare;
}

/// Keys the parser's tables so that no document can foresee them. The system is asked once for the process:
/// asking costs as much as making a parser.
unsigned long newSalt()
{
    static std::atomic<std::uint64_t> state = [] {
        std::random_device random;
        return std::uint64_t{random()} << 32 | random();
    }();
    std::uint64_t salt = state.fetch_add(0x9E3779B97F4A7C15) + 0x9E3779B97F4A7C15;
    salt = (salt ^ (salt >> 30)) * 0xBF58476D1CE4E5B9;
    salt = (salt ^ (salt >> 27)) * 0x94D049BB133111EB;
    return static_cast<unsigned long>(salt ^ (salt >> 31)) | 1; // to expat 0 means none
}
} // namespace

struct XMLReader::Callbacks {
    static XMLReader& of(void* reader) { return *static_cast<XMLReader*>(reader); }

    static void XMLCALL startElement(void* self, const char* name, const char** attributes)
    {
        XMLReader& reader = of(self);
        reader.endCharacters();
        if (reader.m_error)
            return;
        // Of the rest a small document type can give any number to any number of elements.
        if (reader.m_declarations > 0)
            attributes[XML_GetSpecifiedAttributeCount(static_cast<XML_Parser>(reader.m_parser.get()))] =
                nullptr;
        reader.m_delegate.didStartElement(name, XMLAttributes(attributes));
        reader.listen();
    }

    static void XMLCALL endElement(void* self, const char*)
    {
        XMLReader& reader = of(self);
        reader.endCharacters();
        if (reader.m_error)
            return;
        reader.m_delegate.didEndElement();
        reader.listen();
    }

    static void XMLCALL characters(void* self, const char* text, int length)
    {
        XMLReader& reader = of(self);
        if (reader.m_taken == Text::None) {
            reader.m_text.clear();
            reader.m_taken = Text::Characters;
        }
        reader.takeText({text, static_cast<std::size_t>(length)});
    }

    static void XMLCALL startBlock(void* self)
    {
        XMLReader& reader = of(self);
        reader.endCharacters();
        if (!reader.m_isTextWanted)
            return;
        reader.m_text.clear();
        reader.m_taken = Text::Block;
    }

    static void XMLCALL endBlock(void* self)
    {
        XMLReader& reader = of(self);
        if (std::exchange(reader.m_taken, Text::None) == Text::Block && !reader.m_error)
            reader.m_delegate.foundCDATA(reader.m_text);
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
        const auto table = SingleByteEncoding::table(name);
        if (!table)
            return XML_STATUS_ERROR;
        std::copy(table->begin(), table->end(), encoding->map);
        return XML_STATUS_OK;
    }
};

void XMLReader::ParserDeleter::operator()(void* parser) const
{
    XML_ParserFree(static_cast<XML_Parser>(parser));
}

XMLReader::XMLReader(XMLReaderDelegate& delegate) : m_delegate(delegate), m_parser(takeParser())
{
    if (!m_parser)
        throw std::bad_alloc();
    const auto parser = static_cast<XML_Parser>(m_parser.get());
    m_text.reserve(commonText);
    XML_SetHashSalt(parser, newSalt());
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, &Callbacks::startElement, &Callbacks::endElement);
    XML_SetCdataSectionHandler(parser, &Callbacks::startBlock, &Callbacks::endBlock);
    XML_SetCommentHandler(parser, &Callbacks::comment);
    XML_SetProcessingInstructionHandler(parser, &Callbacks::instruction);
    XML_SetEntityDeclHandler(parser, &Callbacks::entity);
    XML_SetAttlistDeclHandler(parser, &Callbacks::attributeList);
    XML_SetUnknownEncodingHandler(parser, &Callbacks::encoding, nullptr);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, maximumAmplification);
    XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, freeExpansion);
}

XMLReader::~XMLReader()
{
    XML_Parser none = nullptr;
    // A parser keeps what memory it had to take: that of a document of entities may be much.
    if (!m_error && m_declarations == 0 && m_fed <= smallDocument &&
        spareParser.compare_exchange_strong(none, static_cast<XML_Parser>(m_parser.get())))
        static_cast<void>(m_parser.release());
}

bool XMLReader::read(std::string_view bytes)
{
    while (!bytes.empty() && !m_error) {
        const std::string_view part = bytes.substr(0, slice);
        bytes.remove_prefix(part.size());
        // expat looks at an unfinished token from its beginning each time. Letting it wait until it may have
        // doubled keeps that linear.
        if (m_held.size() + part.size() < m_unfinishedToken) {
            m_held += part;
        } else if (m_held.empty()) {
            feed(part, false);
        } else {
            m_held += part;
            feed(m_held, false);
            m_held.clear();
        }
    }
    return !m_error;
}

// After each piece but the last expat goes over its bytes once more to count lines.
bool XMLReader::finish(std::string_view lastBytes)
{
    const std::size_t before = lastBytes.size() - std::min(lastBytes.size(), slice);
    if (!read(lastBytes.substr(0, before)))
        return false;
    lastBytes.remove_prefix(before);
    if (m_held.empty())
        return feed(lastBytes, true);
    m_held += lastBytes;
    return feed(std::exchange(m_held, {}), true);
}

bool XMLReader::feed(std::string_view bytes, bool isFinal)
{
    const auto parser = static_cast<XML_Parser>(m_parser.get());
    const auto status =
        XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), isFinal ? XML_TRUE : XML_FALSE);
    if (m_error)
        return false;
    if (status != XML_STATUS_OK) {
        const XML_Error code = XML_GetErrorCode(parser);
        fail(code == XML_ERROR_AMPLIFICATION_LIMIT_BREACH ? expandsTooMuch : notWellFormed,
             XML_ErrorString(code));
        return false;
    }
    m_fed += bytes.size();
    // Without a place nothing has gone forward since the last call.
    if (const XML_Index place = XML_GetCurrentByteIndex(parser); place >= 0)
        m_unfinishedToken = m_fed - std::min(m_fed, static_cast<std::size_t>(place));
    else
        m_unfinishedToken += bytes.size();
    if (m_unfinishedToken > maximumPiece)
        fail(pieceTooLong, "a piece of markup is too long");
    return !m_error;
}

void XMLReader::fail(ErrorCode code, const std::string& reason)
{
    if (m_error)
        return;
    const auto parser = static_cast<XML_Parser>(m_parser.get());
    m_error = Error{errorDomain, code,
                    JSON{{"Reason", reason},
                         {"Line", XML_GetCurrentLineNumber(parser)},
                         {"Column", XML_GetCurrentColumnNumber(parser) + 1}}};
    XML_StopParser(parser, XML_FALSE); // refused, to no harm, where nothing is being read
}

void XMLReader::endCharacters()
{
    if (m_taken != Text::Characters)
        return;
    m_taken = Text::None;
    if (!m_error)
        m_delegate.foundCharacters(m_text);
}

// expat calls for every line of text: where nobody wants it, it had better not.
void XMLReader::listen()
{
    const bool wants = m_delegate.wantsText();
    if (std::exchange(m_isTextWanted, wants) != wants)
        XML_SetCharacterDataHandler(static_cast<XML_Parser>(m_parser.get()),
                                    wants ? &Callbacks::characters : nullptr);
}

void XMLReader::takeText(std::string_view text)
{
    if (text.size() > maximumPiece - m_text.size())
        fail(pieceTooLong, "a piece of text is too long");
    else if (!m_error)
        m_text += text;
}

void XMLReader::countDeclaration()
{
    if (++m_declarations > maximumDeclarations)
        fail(tooManyDeclarations, "the document type declares too much");
}

} // namespace virlo
