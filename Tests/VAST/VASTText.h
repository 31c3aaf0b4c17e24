#pragma once

#include "VIRLOVASTXMLParser.h"

#include <memory>
#include <string>

/// VAST documents as tests write them, and their results.
namespace virlo::test
{

/// An element with its text in a CDATA section; `attributes` begin with a space.
[[nodiscard]] std::string marked(const std::string& name, const std::string& text,
                                 const std::string& attributes = {});
[[nodiscard]] std::string impression(const std::string& url);
[[nodiscard]] std::string tracking(const std::string& event, const std::string& url);
[[nodiscard]] std::string mediaFile(const std::string& url);
/// `content` is the content of its "Linear".
[[nodiscard]] std::string creative(const std::string& attributes, const std::string& content);
[[nodiscard]] std::string inlineAd(const std::string& identifier, const std::string& content);
[[nodiscard]] std::string wrapperAd(const std::string& identifier, const std::string& target,
                                    const std::string& content = {});
[[nodiscard]] std::string vast(const std::string& ads);

/// The records of a document, its wrappers unresolved; a document that cannot be read fails the test.
[[nodiscard]] VIRLOVASTXMLParser::Advertisements recordsOf(const std::string& document);
/// The URLs of the ad's impressions in order, separated by blanks.
[[nodiscard]] std::string impressionsOf(const VIRLOVASTAd& ad);

/// What a parser reported.
struct Report {
    std::optional<VIRLOVASTXMLParser::Advertisements> ads;
    OptionalError error;

    /// The only ad; any other number of ads fails the test.
    [[nodiscard]] const VIRLOVASTAd& ad() const;

    [[nodiscard]] long code() const { return error ? error->code : 0; }

    [[nodiscard]] std::string domain() const { return error ? error->domain : std::string(); }
};

/// Starts the parser and waits for its report, at most ten seconds.
[[nodiscard]] Report reportOf(const std::shared_ptr<VIRLOVASTXMLParser>& parser);
/// The same for a document and all behind it.
[[nodiscard]] Report parse(const std::string& url);

} // namespace virlo::test
