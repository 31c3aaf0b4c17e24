#pragma once

#include "Error.h"
#include "XMLReaderDelegate.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace virlo
{

/// Reads one XML document and reports it event by event. Namespaces are not processed. Encodings: UTF-8 and
/// UTF-16 with and without a byte order mark, US-ASCII, and the single-byte encodings of the ISO-8859,
/// Windows and KOI8 families. Nothing outside the document is ever fetched, and default values that a
/// document type declares for attributes are ignored.
///
/// Safe on hostile documents: time is linear in the document's size, and memory is a small multiple of it. A
/// document that exceeds a limit ends in an error, as one that is not well formed does.
///
/// Errors carry `errorDomain`, an `ErrorCode` and in userInfo "Reason", "Line" and "Column" (both counted
/// from 1). One thread at a time; the delegate must outlive the reader.
class XMLReader
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.xml";

    enum ErrorCode {
        notWellFormed = 1,
        documentTooLong = 2,     ///< more than `maximumDocumentSize` bytes
        tooManyDeclarations = 3, ///< more than `maximumDeclarations` of entities and attributes
        expandsTooMuch = 4,      ///< entities make the document more than twice as long, and over 1 MiB
        refused = 5              ///< by the delegate: see `fail`
    };

    static constexpr std::size_t maximumDocumentSize = std::size_t{8} << 20;
    static constexpr int maximumDeclarations = 64;

    explicit XMLReader(XMLReaderDelegate& delegate);
    ~XMLReader();
    XMLReader(const XMLReader&) = delete;
    XMLReader& operator=(const XMLReader&) = delete;

    /// Reads the whole document; false where that ends in an error. Once per reader.
    [[nodiscard]] bool parse(std::string_view document);
    /// Ends the reading with an error; called by the delegate. No event follows.
    void fail(ErrorCode code, const std::string& reason);

    [[nodiscard]] const OptionalError& error() const noexcept { return m_error; }

private:
    struct Callbacks; // called by expat

    struct ParserDeleter {
        void operator()(XML_ParserStruct* parser) const;
    };

    void endCharacters();
    void countDeclaration();

    XMLReaderDelegate& m_delegate;
    std::unique_ptr<XML_ParserStruct, ParserDeleter> m_parser;
    OptionalError m_error;
    std::string m_text; ///< of the current run or CDATA section, which expat reports line by line
    int m_declarations = 0;
};

} // namespace virlo
