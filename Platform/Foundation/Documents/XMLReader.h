#pragma once

#include "Error.h"
#include "XMLReaderDelegate.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace virlo
{

/// Reads one XML document event by event, from bytes as they arrive. Namespaces are not processed. UTF-8,
/// UTF-16 with and without a mark, ISO-8859-1 and US-ASCII are read, and the other single-byte encodings of
/// the Windows, ISO-8859 and KOI8 families where the system knows them. Nothing outside the document is ever
/// fetched, and attributes that only a document type gives a value are left out.
///
/// Safe on hostile documents: time is linear in the document's size, whatever the sizes of the pieces it
/// comes in, and memory is bounded by the limits below beside some hundred bytes for each level of nesting.
/// What passes a limit ends in an error like any fault of form.
///
/// Errors carry `errorDomain`, a code of `ErrorCode` and in userInfo "Reason", "Line" and "Column" (both from
/// 1 on). One thread at a time; the delegate must outlive the reader.
class XMLReader
{
public:
    static constexpr const char* errorDomain = "com.virlohq.error.xml";

    enum ErrorCode {
        notWellFormed = 1,
        /// A wanted text of more than `maximumPiece` bytes, or markup: a tag or a comment is seen to be too
        /// long at twice that length at the latest.
        pieceTooLong = 2,
        tooManyDeclarations = 3, ///< more than `maximumDeclarations` of entities and attributes
        expandsTooMuch = 4,      ///< entities would make the document more than twice as long, and past 1 MiB
        refused = 5              ///< by the delegate's owner: see `fail`
    };

    static constexpr std::size_t maximumPiece = std::size_t{4} << 20;
    static constexpr int maximumDeclarations = 64;

    explicit XMLReader(XMLReaderDelegate& delegate);
    ~XMLReader();
    XMLReader(const XMLReader&) = delete;
    XMLReader& operator=(const XMLReader&) = delete;

    /// The document's next bytes. False once there is an error; what comes after it is passed over.
    bool read(std::string_view bytes);
    /// The document has ended, with these bytes as its last: reading them here costs less than in a `read`
    /// before. False where it is not whole and well formed.
    bool finish(std::string_view lastBytes = {});
    /// Ends the reading with an error, from inside a call to the delegate too.
    void fail(ErrorCode code, const std::string& reason);

    [[nodiscard]] const OptionalError& error() const noexcept { return m_error; }

private:
    struct Callbacks; // what expat calls

    struct ParserDeleter {
        void operator()(void* parser) const;
    };
    enum class Text { None, Characters, Block };

    bool feed(std::string_view bytes, bool isFinal);
    void endCharacters();
    void listen();
    void takeText(std::string_view text);
    void countDeclaration();

    XMLReaderDelegate& m_delegate;
    std::unique_ptr<void, ParserDeleter> m_parser;
    OptionalError m_error;

    std::string m_held; ///< arrived, but too little to make a long token whole
    std::size_t m_fed = 0;
    std::size_t m_unfinishedToken = 0;

    std::string m_text;
    Text m_taken = Text::None;
    bool m_isTextWanted = false;
    int m_declarations = 0;
};

} // namespace virlo
