#pragma once

#include "XMLAttributes.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class VIRLOVASTCreative;
class VIRLOVASTImpression;

/// One inline ad of a VAST document, and the base of VIRLOVASTWrapperAd. Built and changed by one thread at a
/// time (the parser's, then the merger's); a finished ad is only read.
class VIRLOVASTAd
{
public:
    using Impressions = std::vector<std::shared_ptr<VIRLOVASTImpression>>;
    using Creatives = std::vector<std::shared_ptr<VIRLOVASTCreative>>;

    /// `properties` are the attributes of the element "Ad".
    [[nodiscard]] static std::shared_ptr<VIRLOVASTAd>
    initWithProperties(const virlo::XMLAttributes& properties);

    explicit VIRLOVASTAd(const virlo::XMLAttributes& properties);
    virtual ~VIRLOVASTAd() = default;
    VIRLOVASTAd(const VIRLOVASTAd&) = delete;
    VIRLOVASTAd& operator=(const VIRLOVASTAd&) = delete;

    /// The attribute "id".
    [[nodiscard]] const std::optional<std::string>& identifier() const noexcept { return m_identifier; }

    /// "InLine" or "Wrapper".
    [[nodiscard]] const std::string& type() const noexcept { return m_type; }

    /// As written in the document, white space included.
    [[nodiscard]] const std::optional<std::string>& title() const noexcept { return m_title; }

    void setTitle(std::optional<std::string> title) { m_title = std::move(title); }

    /// The ad server's name, as written in the document.
    [[nodiscard]] const std::optional<std::string>& systemName() const noexcept { return m_systemName; }

    void setSystemName(std::optional<std::string> name) { m_systemName = std::move(name); }

    [[nodiscard]] const std::optional<std::string>& systemVersion() const noexcept { return m_systemVersion; }

    void setSystemVersion(std::optional<std::string> version) { m_systemVersion = std::move(version); }

    [[nodiscard]] const Impressions& impressions() const noexcept { return m_impressions; }

    [[nodiscard]] Impressions& impressions() noexcept { return m_impressions; }

    void setImpressions(Impressions impressions) { m_impressions = std::move(impressions); }

    [[nodiscard]] const Creatives& creatives() const noexcept { return m_creatives; }

    [[nodiscard]] Creatives& creatives() noexcept { return m_creatives; }

    void setCreatives(Creatives creatives) { m_creatives = std::move(creatives); }

    /// By identifier alone, so a wrapper may equal an inline ad; an ad without an identifier equals none.
    [[nodiscard]] bool isEqual(const VIRLOVASTAd& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] virtual std::string description() const;

protected:
    VIRLOVASTAd(std::optional<std::string> identifier, const char* type);

private:
    const std::optional<std::string> m_identifier;
    const std::string m_type;
    std::optional<std::string> m_title;
    std::optional<std::string> m_systemName;
    std::optional<std::string> m_systemVersion;
    Impressions m_impressions;
    Creatives m_creatives;
};
